// -va: names and opens the output, which is named after its input, and turns vectors into angles.
#pragma once

#include "driver/run_setup.h"

namespace quillet {

// Writes the flow direction of the first input.
void WRITE_VELOCITY_ANGLES(RunSetup& setup);

}  // namespace quillet
