#include "build_paths.h"

namespace quillet::testing {

const std::string program_path = QUILLET_PROGRAM;
const std::string example_model_path = QUILLET_EXAMPLE_MODEL;
const std::string fault_library_path = QUILLET_FAULT_LIBRARY;
const std::string tests_folder = QUILLET_TESTS;

}  // namespace quillet::testing
