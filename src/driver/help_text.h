#pragma once

namespace quillet {

// --help: the usage text, then every operation with its page, the options that the usage leaves
// out, then our own.
void PRINT_HELP();

}  // namespace quillet
