#include "driver/map_runs.h"

#include <string>

#include "driver/output_opening.h"
#include "operations/grid.h"
#include "operations/points.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

// A name of the user's without extension gets the usual one.
void settle_extension(std::string_view usual, std::string_view other, std::string_view refusal,
                      OutputNaming& naming) {
  std::string& name = naming.base_file_name;
  const std::string extension = naming.user_named ? FILEEXT(name) : "";
  if (extension.empty()) {
    name += usual;
  } else if (extension != usual && extension != other) {
    FAIL_RUN(std::string(refusal) + QUOTED(name));
  }
}

// In a .dat file the type tells it, in an XMDF file the group that the angles stand in.
bool holds_angles(const RunSetup& setup) {
  if (setup.input_kinds.front() == FileKind::dat) return setup.inputs.types.front().type == "_va";
  const XmdfDatasetList& datasets = setup.xmdf_files.front().datasets();
  for (const std::int32_t position :
       {datasets.temporal, datasets.maximums, datasets.minimums, datasets.selected}) {
    if (position != 0 && FLAGEXISTS('/' + datasets.path(position), "/Velocity Angle/")) return true;
  }
  return false;
}

MeshMapJob mesh_map_job(RunSetup& setup) {
  MeshMapJob job{.inputs = setup.inputs, .step = setup.work.step};
  job.shape = setup.shape;
  job.is_finite_volume = setup.is_finite_volume;
  job.wet_dry_test = setup.wet_dry_test;
  job.holds_angles = holds_angles(setup);
  job.time = setup.time;
  job.tolerance = setup.tolerance;
  return job;
}

}  // namespace

bool SET_CELL_SIZE(RunOptions& options, std::string_view value) {
  options.cell_size = READ_WHOLE_DOUBLE(value).value_or(0);
  options.cell_size_text = value;
  return options.cell_size > 0;
}

bool SET_POINTS_FILE(RunOptions& options, std::string_view value) {
  options.points_file = TRIMF(value);
  return !options.points_file->empty();
}

void NAME_GRID(const RunOptions& options, OutputNaming& naming) {
  naming.append("grid" + options.cell_size_text);
  settle_extension(".tif", ".asc", "ERROR - Output of --grid is .tif or .asc: ", naming);
}

void NAME_TIME_SERIES(const RunOptions&, OutputNaming& naming) {
  naming.append("points");
  settle_extension(".csv", ".csv", "ERROR - Output of --points is .csv: ", naming);
}

void WRITE_GRID(RunSetup& setup) {
  REFUSE_INPUT_AS_OUTPUT(setup, setup.naming.base_file_name);
  RUN_GRID(mesh_map_job(setup), {.output_name = setup.naming.base_file_name,
                                 .cell_size = setup.options.cell_size,
                                 .cell_size_text = setup.options.cell_size_text,
                                 .coordinate_system = setup.options.coordinate_system});
}

void WRITE_TIME_SERIES(RunSetup& setup) {
  REFUSE_INPUT_AS_OUTPUT(setup, setup.naming.base_file_name);
  RUN_POINTS(mesh_map_job(setup), {.points_file = *setup.options.points_file,
                                   .output_name = setup.naming.base_file_name});
}

}  // namespace quillet
