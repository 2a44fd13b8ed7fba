#include "driver/ensight_run.h"

#include <algorithm>

#include "driver/output_opening.h"
#include "ensight/ensight_export.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {
namespace {

// Announces the inputs and returns how many of them are exported: all .dat files, or the first XMDF
// file. Ends the run when both kinds are there.
std::size_t count_inputs_in_use(const RunSetup& setup) {
  const auto& kinds = setup.input_kinds;
  const auto dat_files = std::count(kinds.begin(), kinds.end(), FileKind::dat);
  const auto count = static_cast<std::int64_t>(kinds.size());
  if (dat_files != 0 && dat_files != count) {
    FAIL_RUN("ERROR - Must specify all .dat or all .xmdf files for export to ensight.");
  }
  if (dat_files != 0) {
    SAY("Converting .dat file(s) to ensight text format.");
    SAY("Number of .dat files: " + AINTEGER(count));
    return kinds.size();
  }
  SAY("Converting xmdf file to ensight text format.");
  if (count > 1) SAY("WARNING - Only one file used for -ensight option");
  return 1;
}

}  // namespace

void EXPORT_INPUTS_TO_ENSIGHT(RunSetup& setup) {
  ExportRequest request;
  request.output_base = setup.naming.base_file_name;
  request.mesh_file = setup.inputs.types.front().mesh_file;
  request.files_read = FILES_READ(setup);
  request.node_count = setup.shape.node_count;
  request.cell_count = setup.shape.cell_count;
  request.is_finite_volume = setup.is_finite_volume;
  request.time_tolerance = setup.tolerance;

  std::vector<std::vector<std::unique_ptr<ResultDataset>>> datasets;
  const std::size_t count = count_inputs_in_use(setup);
  for (std::size_t input = 0; input < count; ++input) {
    EnsightInput& exported = request.inputs.emplace_back();
    exported.name = setup.input_names[input];
    exported.type = setup.inputs.types[input];
    datasets.push_back(setup.inputs.sources[input]->datasets());
    for (const auto& dataset : datasets.back()) exported.datasets.push_back(dataset.get());
  }
  EXPORT_ENSIGHT(request);
}

}  // namespace quillet
