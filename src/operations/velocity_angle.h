// -va: the direction of flow in degrees, clockwise from north, in place of every vector.
#pragma once

#include "operations/operation_job.h"

namespace quillet {

// Writes the input's output times (or the one asked for) as scalar angles. An output time that is
// not vector data ends the run.
void RUN_VELOCITY_ANGLE(OperationJob& job);

}  // namespace quillet
