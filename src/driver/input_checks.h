// Whether the inputs fit together.
#pragma once

#include "driver/run_setup.h"

namespace quillet {

// The input that the others are compared with: the first .dat file, else the first input.
const ResultSource& PRIMARY_INPUT(const RunSetup& setup);

// Equal numbers of nodes and cells, vector data where the operation needs them, all scalar or all
// vector. The first input that does not fit ends the run. Operations that take each input by itself
// are not checked.
void CHECK_CONSISTENCY(const RunSetup& setup);

}  // namespace quillet
