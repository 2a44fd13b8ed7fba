// -conv: converts the inputs of a run.
#pragma once

#include "driver/run_setup.h"

namespace quillet {

// Converts each input by itself. A target that exists and was not named by the user ends the run
// before anything is written: engines give their own files such names. So does an input without
// anything to convert.
void CONVERT_INPUTS(RunSetup& setup);

}  // namespace quillet
