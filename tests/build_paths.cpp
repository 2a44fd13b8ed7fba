#include "build_paths.h"

#include <cstdlib>

namespace quillet::testing {

const bool program_is_foreign = std::getenv("QUILLET_PROGRAM") != nullptr;
const std::string program_path =
    program_is_foreign ? std::getenv("QUILLET_PROGRAM") : QUILLET_PROGRAM;
const std::string example_model_path = QUILLET_EXAMPLE_MODEL;
const std::string fault_library_path = QUILLET_FAULT_LIBRARY;
const std::string tests_folder = QUILLET_TESTS;

}  // namespace quillet::testing
