// The version of the program and its library, as the build states it.
#pragma once

#include <string_view>

namespace quillet {

// "0.1.0"
std::string_view PROGRAM_VERSION();

}  // namespace quillet
