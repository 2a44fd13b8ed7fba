#include "driver/ensight_run.h"

#include "ensight/ensight_export.h"

namespace quillet {

void EXPORT_INPUTS_TO_ENSIGHT(RunSetup& setup) {
  EnsightRun run;
  run.output_base = setup.naming.base_file_name;
  run.mesh_file = setup.inputs.types.front().mesh_file;
  run.node_count = setup.node_count;
  if (setup.cell_count != unknown_count) run.cell_count = setup.cell_count;
  run.is_finite_volume = setup.is_finite_volume;
  run.time_tolerance = setup.tolerance;

  std::vector<std::vector<std::unique_ptr<ResultDataset>>> datasets;
  for (std::size_t input = 0; input < setup.inputs.sources.size(); ++input) {
    EnsightInput& exported = run.inputs.emplace_back();
    exported.name = setup.input_names[input];
    exported.type = setup.inputs.types[input];
    exported.format =
        setup.input_kinds[input] == FileKind::dat ? EnsightFormat::dat : EnsightFormat::xmdf;
    datasets.push_back(setup.inputs.sources[input]->datasets());
    for (const auto& dataset : datasets.back()) exported.datasets.push_back(dataset.get());
  }
  EXPORT_ENSIGHT(run);
}

}  // namespace quillet
