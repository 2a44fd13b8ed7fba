// Where the programs under test and the sources of the tests stand.
#pragma once

#include <string>

namespace quillet::testing {

extern const std::string program_path;
extern const std::string example_model_path;
extern const std::string fault_library_path;
extern const std::string tests_folder;  // without a closing separator

}  // namespace quillet::testing
