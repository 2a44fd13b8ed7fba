// Opening the output of a run, never over one of its inputs.
#pragma once

#include <string>

#include "driver/run_setup.h"

namespace quillet {

// Ends the run when the output is the same file as an input, as the mesh or as the water levels of
// one, by whatever name, or would grow under the name of one.
void REFUSE_INPUT_AS_OUTPUT(const RunSetup& setup, const std::string& output_name);

// Opens the output of operations that write one dataset file, under its temporary name.
void OPEN_OUTPUT(RunSetup& setup);

// Names the output of -va, unless the user did, and opens it.
void OPEN_VELOCITY_ANGLE_OUTPUT(RunSetup& setup);

}  // namespace quillet
