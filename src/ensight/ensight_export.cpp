#include "ensight/ensight_export.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "ensight/case_file.h"
#include "ensight/dataset_plan.h"
#include "ensight/ensight_names.h"
#include "ensight/geometry.h"
#include "ensight/variable_file.h"
#include "mesh/load_mesh.h"
#include "results/results_record.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/output_unit.h"
#include "support/text.h"

namespace quillet {
namespace {

bool has_format(const EnsightRun& run, EnsightFormat format) {
  return std::any_of(run.inputs.begin(), run.inputs.end(),
                     [&](const EnsightInput& input) { return input.format == format; });
}

void announce(const EnsightRun& run) {
  const bool has_dat = has_format(run, EnsightFormat::dat);
  if (has_dat && has_format(run, EnsightFormat::xmdf)) {
    FAIL_RUN("ERROR - Must specify all .dat or all .xmdf files for export to ensight.");
  }
  const auto count = static_cast<std::int64_t>(run.inputs.size());
  if (has_dat) {
    SAY("Converting .dat file(s) to ensight text format.");
    SAY("Number of .dat files: " + AINTEGER(count));
  } else {
    SAY("Converting xmdf file to ensight text format.");
    if (count > 1) SAY("WARNING - Only one file used for -ensight option");
  }
}

// The inputs that are exported.
EnsightRun inputs_in_use(const EnsightRun& run) {
  EnsightRun result = run;
  if (has_format(run, EnsightFormat::xmdf)) result.inputs.resize(1);
  return result;
}

// A case file of an earlier export would point to files of this one.
void remove_older(const std::string& case_name) {
  while (::unlink(case_name.c_str()) != 0 && errno != ENOENT && errno != ENOTDIR) {
    ASK_TO_TRY_AGAIN(case_name, std::strerror(errno));
  }
}

class EnsightExport {
 public:
  explicit EnsightExport(const EnsightRun& whole_run)
      : run(inputs_in_use(whole_run)),
        base(ENSIGHT_BASE(run.output_base)),
        run_times(RUN_TIMES(run.inputs)) {}

  void perform() {
    const std::string case_name = output_name(base + ".case");
    refuse_input(PART_NAME(case_name));
    write_geometry(case_name);
    OutputUnit case_file(case_name);
    case_file.write(CASE_HEAD(NAME_IN_CASE_FILE(text_geometry_name())));
    for (const EnsightInput& input : run.inputs) export_input(input, case_file);
    write_constants_and_times(case_file);
    case_file.complete();
    SAY("Finished.");
  }

 private:
  std::string text_geometry_name() const { return base + "_text.geo"; }

  void refuse_input(const std::string& name) const {
    const auto refuse = [&](const std::string& input) {
      if (SAME_FILE(input, name))
        FAIL_RUN("ERROR - Output file is also an input file: " + QUOTED(name));
    };
    refuse(run.mesh_file);
    for (const EnsightInput& input : run.inputs) refuse(input.name);
  }

  // The name, which leads to no input.
  std::string output_name(const std::string& name) const {
    refuse_input(name);
    return name;
  }

  std::string geometry_name(const std::string& name) const {
    refuse_input(GEOMETRY_LOG_NAME(name));
    return output_name(name);
  }

  // An older data set stays whole until its first file is replaced.
  void write_geometry(const std::string& case_name) {
    const std::string text_name = geometry_name(text_geometry_name());
    const std::string binary_name = geometry_name(base + "_binary.geo");
    SAY("Need to read 2dm file.");
    SAY("Scanning geometry...");
    mesh = MAKE_ENSIGHT_MESH(load_mesh());
    SAY("Finished scanning geometry.");
    remove_older(case_name);
    WRITE_ENSIGHT_GEO_TEXT(mesh, text_name);
    WRITE_ENSIGHT_GEO_BINARY(mesh, binary_name);
    place = PLACE_OF_VALUES(mesh, run.is_finite_volume, run.node_count);
  }

  MESH_TYPE load_mesh() const {
    MESH_TYPE loaded;
    const auto nodes = run.is_finite_volume ? std::nullopt : std::optional(run.node_count);
    LOAD_MESH(run.mesh_file, nodes, run.cell_count, loaded);
    return loaded;
  }

  void export_input(const EnsightInput& input, OutputUnit& case_file) {
    SAY("Processing File: " + input.name);
    export_datasets(input, false, case_file);
    export_datasets(input, true, case_file);
  }

  void export_datasets(const EnsightInput& input, bool vectors, OutputUnit& case_file) {
    const std::string kind = vectors ? "vector" : "scalar";
    const auto count = std::count_if(
        input.datasets.begin(), input.datasets.end(),
        [&](const ResultDataset* dataset) { return dataset->is_vector() == vectors; });
    if (count == 0) return;
    SAY("Processing all " + kind + " datasets, total number: " + AINTEGER(count));
    std::int64_t number = 0;
    for (ResultDataset* dataset : input.datasets) {
      if (dataset->is_vector() != vectors) continue;
      SAY("Processing " + kind + " datasets number " + AINTEGER(++number));
      export_dataset(input, *dataset, case_file);
    }
  }

  void export_dataset(const EnsightInput& input, ResultDataset& dataset, OutputUnit& case_file) {
    DatasetPlan plan = PLAN_DATASET(run, input, dataset, run_times);
    SAY("Datasets Name: " + plan.title);
    if (plan.outputs.empty()) {
      SAY(unexpected_time);
      return;
    }
    plan.output_name = output_names.take(ENSIGHT_VARIABLE_NAME(plan.output_name));
    SAY("Output dataset name " + plan.output_name);
    const std::string file_base = file_bases.take(file_base_of(input, plan));
    write_outputs(dataset, plan, file_base);
    case_file.write(CASE_VARIABLE_LINE(case_variable(dataset, plan, file_base)));
    SAY("Finished Processing Dataset.");
  }

  // What stands in one folder must be told apart by its name alone; the name of a dataset may not
  // lead into another.
  std::string file_base_of(const EnsightInput& input, const DatasetPlan& plan) const {
    std::string own = plan.file_ending;
    if (run.inputs.size() > 1) own = "_" + FILENAME(input.name) + own;
    std::replace(own.begin(), own.end(), '/', '_');
    std::replace(own.begin(), own.end(), '\\', '_');
    return base + ENSIGHT_FILE_NAME(own);
  }

  CaseVariable case_variable(const ResultDataset& dataset, const DatasetPlan& plan,
                             const std::string& file_base) const {
    const std::string own_base = NAME_IN_CASE_FILE(file_base);
    return {dataset.is_vector(), place != ValuePlace::nodes, plan.is_series, plan.output_name,
            plan.is_series ? own_base + ".****" : ENSIGHT_NUMBER_SUFFIX(own_base, 1)};
  }

  void write_outputs(ResultDataset& dataset, const DatasetPlan& plan,
                     const std::string& file_base) {
    SIZE_RECORD(record, run.node_count, mesh.element_count, dataset.is_vector());
    for (const PlannedOutput& planned : plan.outputs) {
      const std::string name = output_name(ENSIGHT_NUMBER_SUFFIX(file_base, planned.number));
      read_output(dataset, planned.output);
      WRITE_ENSIGHT_VARIABLE(mesh, place, record, name, plan.description);
    }
    for (std::int64_t i = 0; i < plan.unexpected_outputs; ++i) SAY(unexpected_time);
    if (plan.has_too_many) {
      SAY("ERROR - Ensight output name only support 9999 outputs, please contact " +
          std::string(support_email));
    }
  }

  // Statuses that a dataset does not have count as wet. A map of single values that stands among
  // vectors has them in x.
  void read_output(ResultDataset& dataset, std::size_t output) {
    SIZE_STATUSES(record, mesh.element_count);
    dataset.read(output, record);
    if (!dataset.is_vector() || record.is_vector) return;
    record.is_vector = true;
    SIZE_ARRAY(record.nd.y, run.node_count);
  }

  void write_constants_and_times(OutputUnit& case_file) {
    std::vector<double> times = run_times;
    if (times.size() > largest_ensight_number) times.resize(largest_ensight_number);
    if (!times.empty()) case_file.write(CASE_CALENDAR_LINES(times));
    SAY("Writing x and y references to casefile.");
    case_file.write(CASE_REFERENCE_LINES(mesh.x_minimum, mesh.y_minimum));
    if (times.empty()) return;
    SAY("Writing times to casefile.");
    case_file.write(CASE_TIME_SECTION(times));
  }

  static constexpr std::string_view unexpected_time =
      "WARNING - Unexpected time, skip ensight write.";

  const EnsightRun run;
  const std::string base;
  const std::vector<double> run_times;
  EnsightMesh mesh;
  ValuePlace place = ValuePlace::nodes;
  RES_TYPE record;
  DistinctNames output_names;
  DistinctNames file_bases;
};

}  // namespace

void EXPORT_ENSIGHT(const EnsightRun& run) {
  announce(run);
  EnsightExport(run).perform();
}

}  // namespace quillet
