// -trim: limits every value to the cutoff; a vector that is longer is shortened to it.
#pragma once

#include "operations/operation_job.h"

namespace quillet {

// Writes the input's output times (or the one asked for) with their values limited.
void RUN_TRIM(OperationJob& job);

}  // namespace quillet
