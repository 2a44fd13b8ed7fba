// From arguments to run options. Touches no file, but for telling an absolute path from an option.
#pragma once

#include <string>
#include <vector>

#include "driver/run_options.h"

namespace quillet {

struct ParsedArguments {
  RunOptions options;
  bool output_name_missing = false;  // -out was the last argument
};

// Arguments that begin with "-", "/" or the byte 0x96 (the dash that word processors put in place
// of a hyphen) are options, all others input files. An unknown option or an option value that
// cannot be read ends the run.
ParsedArguments PARSE_ARGUMENTS(const std::vector<std::string>& arguments);

}  // namespace quillet
