// -ensight: hands the inputs of a run to the export.
#pragma once

#include "driver/run_setup.h"

namespace quillet {

// Exports every dataset of the inputs, or those that were selected.
void EXPORT_INPUTS_TO_ENSIGHT(RunSetup& setup);

}  // namespace quillet
