// The terminal behind standard error, if there is one.
#pragma once

#include <cstddef>

namespace quillet {

bool STANDARD_ERROR_IS_TERMINAL();

// Columns; 80 where the terminal does not tell.
std::size_t TERMINAL_WIDTH();

}  // namespace quillet
