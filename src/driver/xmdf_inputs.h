// The XMDF inputs of a run: which dataset of each is read.
#pragma once

#include "driver/run_setup.h"

namespace quillet {

// Opens all XMDF inputs and reads their headers, in input order.
void OPEN_XMDF_INPUTS(RunSetup& setup);

// Lists what the XMDF inputs hold, finds the requested datasets and reads their output times. An
// input without them ends the run. Operations that take everything select only on request.
void CHOOSE_XMDF_DATASETS(RunSetup& setup);

}  // namespace quillet
