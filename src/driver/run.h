// A whole run, from the arguments to its end.
#pragma once

#include <string>
#include <vector>

#include "support/console.h"

namespace quillet {

// `arguments` without the program's own name. Whatever ends the run, everything that it opened is
// closed before the console waits for the last time. Returns the exit status: 1 with --strict after
// an error, else 0.
int RUN_QUILLET(const std::vector<std::string>& arguments, Console& console);

}  // namespace quillet
