#include "operations/velocity_angle.h"

#include "operations/flow_direction.h"
#include "operations/output_time_loop.h"
#include "support/console.h"

namespace quillet {
namespace {

void turn_into_angles(RES_TYPE& step) {
  if (!step.is_vector) FAIL_RUN("ERROR - Must be vector dataset to process velocity angle.");
  FLOW_DIRECTION(step.nd.x.data(), step.nd.y.data(), step.nd.x.data(), step.node_count);
  step.is_vector = false;
}

}  // namespace

void RUN_VELOCITY_ANGLE(OperationJob& job) {
  ANNOUNCE_OUTPUT_TIMES(job, "Processing velocity angle at time at ",
                        "Processing velocity angles at all times.");
  if (!job.shape.is_vector) FAIL_RUN("ERROR - Must be vector for -va (velocity angle) option");
  ResultShape angles = job.shape;
  angles.is_vector = false;
  REWRITE_OUTPUT_TIMES(job, angles, turn_into_angles);
  CLOSE_FILES_AND_EXIT(job);
}

}  // namespace quillet
