#include "driver/velocity_angle_run.h"

#include <string>

#include "driver/output_opening.h"
#include "operations/velocity_angle.h"
#include "support/file_names.h"

namespace quillet {
namespace {

// Beside the input, whose own name stays in it.
std::string output_name(const RunSetup& setup) {
  const std::string input = FILENAMEPATH(setup.input_names.front());
  const FileKind kind = setup.input_kinds.front();
  const std::string type = kind == FileKind::xmdf ? "_" + setup.options.type_code : "";
  return input + type + "_va" + EXTENSION_OF(kind);
}

// A .dat file is named after itself.
std::string dataset_name(const RunSetup& setup) {
  if (setup.output_kind != FileKind::xmdf) return "";
  const DatasetKind dataset = OUTPUT_DATASET(setup);
  if (dataset == DatasetKind::maximum) return "Vector Angle Maximums";
  if (dataset == DatasetKind::minimum) return "Vector Angle Minimums";
  return "Vector Angle";
}

}  // namespace

void WRITE_VELOCITY_ANGLES(RunSetup& setup) {
  if (!setup.naming.user_named) setup.naming.base_file_name = output_name(setup);
  setup.naming.dataset_name = dataset_name(setup);
  OPEN_OUTPUT(setup);
  OperationJob job = OPERATION_JOB(setup);
  RUN_VELOCITY_ANGLE(job);
}

}  // namespace quillet
