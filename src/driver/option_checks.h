// Whether the options fit together.
#pragma once

#include "driver/argument_parser.h"

namespace quillet {

// Makes the checks in their order; the first that fails ends the run with its message.
void CHECK_OPTIONS(const ParsedArguments& arguments);

}  // namespace quillet
