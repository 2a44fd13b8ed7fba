// From arguments to run options. Touches no file, but for telling an absolute path from an option.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "driver/run_options.h"

namespace quillet {

// Arguments that begin with "-", "/" or an en dash (which word processors put in place of a hyphen:
// the byte 0x96, or its three bytes in UTF-8) are options, all others input files. An unknown
// option or an option value that cannot be read ends the run.
RunOptions PARSE_ARGUMENTS(const std::vector<std::string>& arguments);

// True for an option whose value is the argument after it: -out, -2dm.
bool TAKES_NEXT_ARGUMENT(std::string_view argument);

}  // namespace quillet
