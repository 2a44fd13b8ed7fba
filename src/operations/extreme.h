// -max and -min: the largest (smallest) value of every node over all output times and inputs, which
// input it came from and, for a single input, when it occurred.
#pragma once

#include "operations/operation_job.h"
#include "results/extreme.h"

namespace quillet {

// Reads every input in turn, writes the maps, closes inputs and output. With a time, takes that
// output time of each of at least two inputs; fewer end the run.
void RUN_EXTREME(Extreme extreme, OperationJob& job);

}  // namespace quillet
