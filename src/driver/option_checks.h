// Whether the options fit together.
#pragma once

#include "driver/run_options.h"

namespace quillet {

// Makes the checks in their order; the first that fails ends the run with its message.
void CHECK_OPTIONS(const RunOptions& options);

}  // namespace quillet
