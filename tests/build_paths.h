// Where the programs under test and the sources of the tests stand.
#pragma once

#include <string>

namespace quillet::testing {

// The program under test: the one built beside the tests, or what the environment's QUILLET_PROGRAM
// names, which may be built for another system.
extern const std::string program_path;
extern const bool program_is_foreign;
extern const std::string example_model_path;
extern const std::string fault_library_path;
extern const std::string tests_folder;  // without a closing separator

}  // namespace quillet::testing
