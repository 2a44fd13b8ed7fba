#pragma once

namespace quillet {

// --help: the usage text, then every operation with its page, then our own options.
void PRINT_HELP();

}  // namespace quillet
