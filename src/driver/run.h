// A whole run, from the arguments to its end.
#pragma once

#include <string>
#include <vector>

namespace quillet {

// `arguments` without the program's own name. Does not return; the exit status is always 0.
[[noreturn]] void RUN_QUILLET(const std::vector<std::string>& arguments);

}  // namespace quillet
