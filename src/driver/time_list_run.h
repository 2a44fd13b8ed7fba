// -times: lists the output times of a run's input.
#pragma once

#include "driver/run_setup.h"

namespace quillet {

// Lists those of the first input. The list is never written over an input.
void LIST_TIMES_OF_INPUT(RunSetup& setup);

}  // namespace quillet
