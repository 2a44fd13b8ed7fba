#include "driver/conversion_run.h"

#include <algorithm>

#include "driver/conversion_plan.h"
#include "driver/output_opening.h"
#include "mesh/scan_2dm.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {
namespace {

// One input with what becomes of it.
struct Conversion {
  ResultSource* source = nullptr;
  std::string mesh_file;
  ResultDatasets datasets;
  std::vector<ConversionTarget> targets;
};

Conversion plan(const RunSetup& setup, std::size_t input) {
  const std::string& name = setup.input_names[input];
  Conversion conversion;
  conversion.source = setup.inputs.sources[input].get();
  conversion.datasets = conversion.source->datasets();
  conversion.mesh_file = setup.inputs.types[input].mesh_file;
  if (setup.input_kinds[input] == FileKind::dat) {
    conversion.targets = {PLAN_XMDF_TARGET(name, setup.inputs.types[input], conversion.datasets)};
  } else {
    conversion.targets =
        PLAN_DAT_TARGETS(name, setup.options.selects_by_itself(), conversion.datasets);
  }
  const bool has_data = !conversion.targets.empty() && !conversion.targets[0].datasets.empty();
  if (!has_data) FAIL_RUN("ERROR - Nothing to convert in " + QUOTED(name));
  return conversion;
}

// Whether -out names the output: it can name only one.
bool apply_output_name(const RunOptions& options, std::vector<Conversion>& conversions) {
  if (!options.output_name) return false;
  if (conversions.size() > 1 || conversions[0].targets.size() > 1) {
    SAY("WARNING - -out option can only be used with a single output for -conv.");
    SAY("Specifed output name ignored.");
    return false;
  }
  ConversionTarget& target = conversions[0].targets[0];
  target.file_name = *options.output_name;
  ADD_EXTENSION(target.kind, target.file_name);
  return true;
}

void check_targets(const RunSetup& setup, const std::vector<Conversion>& conversions,
                   bool named_by_user) {
  std::vector<std::string> names;
  for (const Conversion& conversion : conversions) {
    for (const ConversionTarget& target : conversion.targets) {
      const std::string& name = target.file_name;
      REFUSE_INPUT_AS_OUTPUT(setup, name);
      const bool is_taken = std::any_of(names.begin(), names.end(), [&](const std::string& other) {
        return SAME_PLACE(name, other);
      });
      if (is_taken) FAIL_RUN("ERROR - Two inputs have one output: " + QUOTED(name));
      if (!named_by_user && FILE_EXISTS(name)) {
        FAIL_RUN("ERROR - Output file already exists: " + QUOTED(name));
      }
      names.push_back(name);
    }
  }
}

bool has_vectors(const ResultDatasets& datasets) {
  return std::any_of(datasets.begin(), datasets.end(),
                     [](const auto& dataset) { return dataset->is_vector(); });
}

void write_target(const ConversionTarget& target, RES_TYPE& step) {
  const DatasetNames names{target.group, DatasetKind::series, target.datasets.front().dataset_name};
  const auto sink = CREATE_OUTPUT(target.kind, target.file_name, names);
  CONVERT_DATASETS(target.datasets, *sink, step);
}

// What a file tells that has no activity: the cells of the mesh beside it, all wet, where it is the
// mesh of these results.
std::int32_t cell_count_of(const Conversion& conversion) {
  const ResultShape shape = conversion.source->shape();
  if (shape.cell_count) return *shape.cell_count;
  if (FILE_EXISTS(SYSTEM_NAME(conversion.mesh_file))) {
    MESH_SUMMARY_TYPE mesh;
    const InputUnit unit(conversion.mesh_file);
    SCAN_2DM_HEADER(unit, mesh);
    SCAN_2DM(unit, mesh);
    if (mesh.node_count == shape.node_count) return mesh.element_count;
  }
  SAY("WARNING - The number of cells is not known, none are written: " +
      QUOTED(conversion.source->name()));
  return 0;
}

// For whoever asks how far the run is.
void announce_reading(const std::vector<Conversion>& conversions) {
  std::size_t times = 0;
  for (const Conversion& conversion : conversions) {
    for (const ConversionTarget& target : conversion.targets) {
      for (const ConversionItem& item : target.datasets) times += item.dataset->times().size();
    }
  }
  RUN_TALLY().times_to_pass = static_cast<std::int64_t>(times);
}

void convert(const Conversion& conversion, RES_TYPE& step) {
  const ResultShape shape = conversion.source->shape();
  SIZE_RECORD_OF_PAIRS(step, shape.node_count, cell_count_of(conversion),
                       has_vectors(conversion.datasets));
  for (const ConversionTarget& target : conversion.targets) {
    write_target(target, step);
  }
}

}  // namespace

void CONVERT_INPUTS(RunSetup& setup) {
  SAY_APART("Converting files.");
  std::vector<Conversion> conversions;
  for (std::size_t input = 0; input < setup.input_names.size(); ++input) {
    conversions.push_back(plan(setup, input));
  }
  const bool named_by_user = apply_output_name(setup.options, conversions);
  check_targets(setup, conversions, named_by_user);
  announce_reading(conversions);
  for (const Conversion& conversion : conversions) convert(conversion, setup.work.step);
  SAY_APART("Closing files and exiting");
}

}  // namespace quillet
