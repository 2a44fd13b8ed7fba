// -dif: the first run's results minus the second's, output time by output time.
#pragma once

#include "operations/operation_job.h"

namespace quillet {

// Pairs the output times of two inputs and writes one difference for each pair, or for the one
// output time asked for, until either input is exhausted. The last output time of a file takes part
// like any other. Meshes and water levels are read only for the wet/dry test.
void RUN_DIFFERENCE(OperationJob& job);

}  // namespace quillet
