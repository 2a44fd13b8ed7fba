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

void RUN_TRIM(OperationJob& job) {
  ANNOUNCE_OUTPUT_TIMES(job, "Trimming values at time at ", "Trimming values at all times.");
  REWRITE_OUTPUT_TIMES(job, job.shape, [&](RES_TYPE& step) { trim(step, job.cutoff); });
  CLOSE_FILES_AND_EXIT(job);
}

}  // namespace quillet
