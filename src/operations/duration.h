// -dur: for how many hours the value exceeds the cutoff. -toi: at which hour it first exceeds its
// value at the first output time by the cutoff. Vectors count by their magnitude.
#pragma once

#include "operations/operation_job.h"

namespace quillet {

// All output times of the first input up to 99998 take part. Writes one scalar output time, 0.0; a
// cell is active when it is active at any of them. Times that run backwards end the run.
void RUN_DURATION(OperationJob& job);

// As above; nodes that never exceed get -99999.
void RUN_TIME_OF_INCREASE(OperationJob& job);

}  // namespace quillet
