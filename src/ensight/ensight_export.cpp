#include "ensight/ensight_export.h"

#include <algorithm>
#include <string_view>

#include "ensight/case_file.h"
#include "ensight/ensight_names.h"
#include "ensight/export_plan.h"
#include "ensight/geometry.h"
#include "ensight/older_export.h"
#include "ensight/variable_files.h"
#include "mesh/load_mesh.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/output_unit.h"
#include "support/run_tally.h"
#include "support/system_files.h"
#include "support/text.h"

namespace quillet {
namespace {

// For whoever asks how far the run is.
void announce_reading(const ExportPlan& plan) {
  std::size_t times = 0;
  for (const PlannedInput& input : plan.inputs) {
    for (const PlannedVariable& variable : input.scalars) times += variable.plan.outputs.size();
    for (const PlannedVariable& variable : input.vectors) times += variable.plan.outputs.size();
  }
  RUN_TALLY().times_to_pass = static_cast<std::int64_t>(times);
}

// A case file of an earlier export would point to files of this one.
void remove_older(const std::string& case_name) {
  while (!REMOVE_FILE(case_name)) ASK_TO_TRY_AGAIN(case_name, SYSTEM_REASON());
}

class EnsightExport {
 public:
  explicit EnsightExport(const ExportRequest& export_request)
      : request(export_request), plan(PLAN_EXPORT(request)) {}

  // The case file's temporary name stands for the data set: it is taken first.
  void perform() {
    announce_reading(plan);
    plan.for_each_file([&](const std::string& name) { refuse_input(name); });
    OutputUnit case_file(plan.case_name());
    read_mesh();
    const OlderExport older = READ_OLDER_EXPORT(plan.case_name());
    remove_older(plan.case_name());
    steps.emplace(bytes_of_values());
    WRITE_ENSIGHT_GEO_TEXT(mesh, plan.text_geometry_name(), *steps);
    WRITE_ENSIGHT_GEO_BINARY(mesh, plan.binary_geometry_name(), *steps);
    case_file.write(CASE_HEAD(NAME_IN_CASE_FILE(plan.text_geometry_name())));
    files.emplace(mesh, place, request.node_count, *steps);
    for (const PlannedInput& input : plan.inputs) export_input(input, case_file);
    steps->tell_all();
    write_constants_and_times(case_file);
    case_file.complete();
    remove_left_over(older);
    SAY("Finished.");
  }

 private:
  bool is_read(const std::string& name) const {
    return FILE_EXISTS(name) &&
           std::any_of(request.files_read.begin(), request.files_read.end(),
                       [&](const std::string& file) { return SAME_FILE(name, file); });
  }

  void refuse_input(const std::string& name) const {
    if (is_read(name)) FAIL_RUN("ERROR - Output file is also an input file: " + QUOTED(name));
  }

  void read_mesh() {
    SAY("Need to read 2dm file.");
    SAY("Scanning geometry...");
    MESH_GEOMETRY_TYPE loaded;
    const auto nodes = request.is_finite_volume ? std::nullopt : std::optional(request.node_count);
    LOAD_MESH(request.mesh_file, nodes, request.cell_count, loaded, ValuesPer::node_or_fv_element);
    mesh = MAKE_ENSIGHT_MESH(std::move(loaded));
    place = PLACE_OF_VALUES(mesh, request.is_finite_volume, request.node_count);
    SAY("Finished scanning geometry.");
  }

  std::int64_t bytes_of_values() const {
    std::int64_t bytes = 0;
    const auto add = [&](const PlannedVariable& variable) {
      bytes += std::ssize(variable.plan.outputs) *
               VARIABLE_FILE_SIZE(mesh, place, variable.plan.dataset->is_vector());
    };
    for (const PlannedInput& input : plan.inputs) {
      for (const PlannedVariable& variable : input.scalars) add(variable);
      for (const PlannedVariable& variable : input.vectors) add(variable);
    }
    return bytes;
  }

  void export_input(const PlannedInput& input, OutputUnit& case_file) {
    steps->say("Processing File: " + input.input->name);
    export_datasets("scalar", input.scalars, case_file);
    export_datasets("vector", input.vectors, case_file);
  }

  void export_datasets(const std::string& kind, const std::vector<PlannedVariable>& datasets,
                       OutputUnit& case_file) {
    if (datasets.empty()) return;
    steps->say("Processing all " + kind +
               " datasets, total number: " + AINTEGER(static_cast<std::int64_t>(datasets.size())));
    std::int64_t number = 0;
    for (const PlannedVariable& dataset : datasets) {
      steps->say("Processing " + kind + " datasets number " + AINTEGER(++number));
      export_dataset(dataset, case_file);
    }
  }

  void export_dataset(const PlannedVariable& dataset, OutputUnit& case_file) {
    steps->say("Datasets Name: " + dataset.plan.title);
    if (dataset.plan.outputs.empty()) {
      steps->say(std::string(unexpected_time));
      return;
    }
    steps->say("Output dataset name " + dataset.plan.output_name);
    write_outputs(dataset);
    case_file.write(CASE_VARIABLE_LINE(case_variable(dataset)));
    steps->say("Finished Processing Dataset.");
  }

  CaseVariable case_variable(const PlannedVariable& dataset) const {
    const VariablePlan& own = dataset.plan;
    const std::string own_base = NAME_IN_CASE_FILE(dataset.file_base);
    return {own.dataset->is_vector(), place != ValuePlace::nodes, own.is_series, own.output_name,
            own.is_series ? own_base + ".****" : ENSIGHT_NUMBER_SUFFIX(own_base, 1)};
  }

  void write_outputs(const PlannedVariable& planned) {
    ResultDataset& dataset = *planned.plan.dataset;
    files->begin_dataset(planned.plan.description, dataset.is_vector());
    for (const PlannedOutput& output : planned.plan.outputs) {
      dataset.read(output.output, files->next_record());
      files->write(ENSIGHT_NUMBER_SUFFIX(planned.file_base, output.number));
    }
    for (std::int64_t i = 0; i < planned.plan.unexpected_outputs; ++i)
      steps->say(std::string(unexpected_time));
    if (planned.plan.has_too_many) {
      steps->say("ERROR - Ensight output name only support 9999 outputs, please contact " +
                 std::string(support_email));
    }
  }

  void write_constants_and_times(OutputUnit& case_file) {
    if (!plan.times.hours.empty()) {
      for (const CalendarConstant& constant : plan.constants) write_constant(constant, case_file);
    }
    SAY("Writing x and y references to casefile.");
    case_file.write(CASE_REFERENCE_LINES(mesh.x_minimum, mesh.y_minimum));
    if (plan.times.hours.empty()) return;
    SAY("Writing times to casefile.");
    if (!plan.times_ascend) {
      SAY("WARNING - Output times do not ascend, viewers show a part of them.");
    }
    case_file.write(CASE_TIME_SECTION(plan.times.texts));
  }

  void write_constant(const CalendarConstant& constant, OutputUnit& case_file) const {
    if (constant.fits_line()) {
      case_file.write(constant.line());
      return;
    }
    const std::string file_name = plan.constant_file_name(constant);
    OutputUnit file(file_name, OutputUnit::Replace::directly);
    file.write(constant.file_text());
    file.complete();
    case_file.write(constant.line_naming(NAME_IN_CASE_FILE(file_name)));
  }

  void remove_left_over(const OlderExport& older) const {
    const WrittenNames written(plan);
    const std::string folder = FILEFOLDERPATH(plan.base);
    REMOVE_LEFT_OVER_FILES(older, plan.case_name(), [&](const std::string& name) {
      return written.contains(name) || is_read(folder + name);
    });
  }

  static constexpr std::string_view unexpected_time =
      "WARNING - Unexpected time, skip ensight write.";

  const ExportRequest& request;
  const ExportPlan plan;
  EnsightMesh mesh;
  ValuePlace place = ValuePlace::nodes;
  std::optional<ExportSteps> steps;
  std::optional<VariableFiles> files;  // last: they end before what they are made from
};

}  // namespace

void EXPORT_ENSIGHT(const ExportRequest& request) {
  EnsightExport(request).perform();
}

}  // namespace quillet
