// Operations that copy some of the output times of their inputs as they are: -k, -r, -rangeA and
// -rangeB, -con. What is passed over is not read.
#pragma once

#include "operations/operation_job.h"

namespace quillet {

// -k: the output time asked for, alone. Ends the run when it is not there.
void RUN_KEEP(OperationJob& job);

// -r: every output time but the one asked for. Warns when that is not there.
void RUN_REMOVE(OperationJob& job);

// -rangeA, -rangeB: the output times from the start to the end of the range, both within the
// tolerance. Warns when there are none.
void RUN_RANGE(OperationJob& job);

// -con: the output times of all inputs, one input after the other. Stored maxima (times above
// 99998) and what a restart wrote again are passed over.
void RUN_CONCATENATE(OperationJob& job);

}  // namespace quillet
