#pragma once

namespace quillet {

// Prints the usage text.
void PRINT_USAGE();

}  // namespace quillet
