// -xnfo: reports on XMDF inputs.
#pragma once

#include "driver/run_setup.h"

namespace quillet {

// Writes a report on each input. An input that is no XMDF file ends the run before anything is
// written.
void REPORT_XMDF_INPUTS(RunSetup& setup);

}  // namespace quillet
