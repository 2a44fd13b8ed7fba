#include "operations/trim.h"

#include "operations/output_time_loop.h"
#include "operations/trim_kernel.h"

namespace quillet {
namespace {

void trim(RES_TYPE& step, float limit) {
  if (step.is_vector) {
    TRIM_VECTOR(step.nd.x.data(), step.node_count, limit);
  } else {
    TRIM_SCALAR(step.nd.x.data(), step.node_count, limit);
  }
}

}  // namespace

void RUN_TRIM(OperationRun& run) {
  ANNOUNCE_OUTPUT_TIMES(run, "Trimming values at time at ", "Trimming values at all times.");
  REWRITE_OUTPUT_TIMES(run, run.shape, [&](RES_TYPE& step) { trim(step, run.cutoff); });
  CLOSE_FILES_AND_EXIT(run);
}

}  // namespace quillet
