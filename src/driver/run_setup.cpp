#include "driver/run_setup.h"

#include <fmt/format.h>

#include <algorithm>

#include "dat/dat_names.h"
#include "dat/dat_water_levels.h"
#include "driver/input_checks.h"
#include "driver/output_opening.h"
#include "driver/xmdf_inputs.h"
#include "mesh/read_sup.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/run_tally.h"
#include "support/text.h"
#include "xmdf/xmdf_headers.h"
#include "xmdf/xmdf_names.h"
#include "xmdf/xmdf_source.h"
#include "xmdf/xmdf_type_search.h"
#include "xmdf/xmdf_water_levels.h"

namespace quillet {
namespace {

constexpr float default_tolerance = 0.0001F;

// A third name of two is the output's.
void take_inputs(RunSetup& setup) {
  setup.time = setup.options.time;
  setup.input_names = setup.options.inputs;
  if (setup.operation.inputs == InputCount::two) setup.input_names.resize(2);
}

// Replaces a .sup file by the results that it names. Its entries stand beside it unless they are
// absolute.
void expand_sup(RunSetup& setup) {
  std::vector<std::string>& inputs = setup.input_names;
  if (FILEEXT(inputs.front()) != ".sup") return;
  if (inputs.size() > 1) {
    FAIL_RUN("ERROR - If using .sup file, there must be only one input file.");
  }
  SAY_APART("Extracting results files from .sup file....");
  SUP_FILE_TYPE sup;
  sup.file = inputs.front();
  READ_SUP(sup);
  SAY("   Done.");
  const auto joined = [&](const std::string& entry) {
    return (IS_ABSOLUTE_NAME(entry) ? "" : sup.folder) + SYSTEM_NAME(entry);
  };
  inputs.clear();
  for (const std::string& entry : sup.data_files) inputs.push_back(joined(entry));
  if (!sup.mesh_file.empty()) setup.sup_mesh = joined(sup.mesh_file);
  if (inputs.empty()) FAIL_RUN("ERROR - No input files specified.");
}

void announce_inputs(const RunSetup& setup) {
  SAY_APART("Allocating arrays for processing " +
            AINTEGER(static_cast<std::int64_t>(setup.input_names.size())) + " files.");
  SAY("   Done.");
}

void refuse_withdrawn(const OperationRow& operation) {
  const auto& [first_line, second_line] = operation.withdrawn;
  if (first_line.empty()) return;
  SAY_APART(first_line);
  SAY(second_line);
  EXITS();
}

FileKind kind_of_input(const std::string& name) {
  const std::optional<FileKind> kind = KIND_OF_RESULTS(name);
  if (!kind) FAIL_RUN("ERROR - Unable to determine file type (expecting .dat or .xmdf).");
  return *kind;
}

void classify_inputs(RunSetup& setup) {
  SAY_APART("ORVANE Results Files:");
  int number = 0;
  for (const std::string& name : setup.input_names) {
    SAY(fmt::format("   File{:3}: {}", ++number, name));
    setup.input_kinds.push_back(kind_of_input(name));
  }
}

void settle_tolerance(RunSetup& setup) {
  if (setup.options.tolerance) {
    setup.tolerance = *setup.options.tolerance;
    SAY_APART("User specified time search tolerance = " + AREAL(setup.tolerance));
    return;
  }
  setup.tolerance = default_tolerance;
  SAY_APART("Default time search tolerance = " + AREAL(setup.tolerance));
  SAY("Use -dttol<tolerance> to set.");
}

bool has_input(const RunSetup& setup, FileKind kind) {
  for (const FileKind input : setup.input_kinds) {
    if (input == kind) return true;
  }
  return false;
}

void check_selection(const RunSetup& setup) {
  const bool must_select = setup.operation.selection == XmdfSelection::one_dataset;
  if (!has_input(setup, FileKind::xmdf) || !must_select || setup.options.selects_dataset()) return;
  SAY_APART("ERROR - Must specify an output type to be processed if using xmdf files.");
  SAY("   Use -type<output type> to use a specific output type.");
  SAY("   Output types should be as specified in the .ocf eg. h, V, q, or d");
  SAY("   E.g. -typeV to process the velocity results.");
  EXITS();
}

void refuse_time_in_xmdf(const RunSetup& setup) {
  const std::string_view message = setup.operation.no_time_in_xmdf;
  if (!message.empty() && setup.time && has_input(setup, FileKind::xmdf)) FAIL_RUN(message);
}

void warn_of_dat(const RunSetup& setup) {
  const std::string_view warning = setup.operation.warning_of_dat;
  if (!warning.empty() && has_input(setup, FileKind::dat)) SAY_APART(warning);
}

// The headers of all XMDF inputs are read before any .dat input is opened.
void open_inputs(RunSetup& setup) {
  OPEN_XMDF_INPUTS(setup);
  std::size_t xmdf_inputs = 0;
  for (std::size_t input = 0; input < setup.input_kinds.size(); ++input) {
    if (setup.input_kinds[input] == FileKind::xmdf) {
      setup.inputs.sources.push_back(std::make_unique<XmdfSource>(setup.xmdf_files[xmdf_inputs++]));
      continue;
    }
    auto source = std::make_unique<DatSource>(setup.input_names[input]);
    setup.dat_sources.push_back(source.get());
    setup.inputs.sources.push_back(std::move(source));
  }
}

// In input order. The first header tells a finite-volume run, whose results have no dry nodes.
void read_dat_headers(RunSetup& setup) {
  for (DatSource* const source : setup.dat_sources) {
    source->read_header();
    const bool is_primary = source == setup.dat_sources.front();
    const ResultShape shape = source->shape();
    if (!is_primary || shape.cell_count != shape.node_count) continue;
    SAY_APART("Number of cells equals number of nodes, assuming ORVANE FV output");
    setup.is_finite_volume = true;
    setup.wet_dry_test = false;
  }
}

InputType type_of_input(const RunSetup& setup, std::size_t input) {
  const RunOptions& options = setup.options;
  const std::string& name = setup.input_names[input];
  const bool is_dat = setup.input_kinds[input] == FileKind::dat;
  InputType type = is_dat ? TYPE_OF_DAT_INPUT(name) : TYPE_OF_XMDF_INPUT(options.type_code);
  const std::string by_name = is_dat ? DEFAULT_MESH_OF_DAT(name) : DEFAULT_MESH_OF_XMDF(name);
  type.mesh_file = setup.sup_mesh.value_or(options.mesh_file.value_or(by_name));
  return type;
}

void identify_inputs(RunSetup& setup) {
  for (std::size_t input = 0; input < setup.input_names.size(); ++input) {
    setup.inputs.types.push_back(type_of_input(setup, input));
  }
}

// A dataset of water levels is one whatever it was asked for by.
void note_water_levels(RunSetup& setup) {
  std::size_t xmdf_inputs = 0;
  for (std::size_t input = 0; input < setup.input_kinds.size(); ++input) {
    if (setup.input_kinds[input] != FileKind::xmdf) continue;
    if (!IS_XMDF_WATER_LEVEL(setup.xmdf_files[xmdf_inputs++])) continue;
    setup.inputs.types[input].is_water_level = true;
  }
}

// Whether the inputs are levels themselves is decided by the first. Nothing is opened yet.
void choose_water_levels(RunSetup& setup) {
  if (!setup.operation.needs_water_levels || !setup.wet_dry_test) return;
  std::size_t xmdf_inputs = 0;
  for (std::size_t input = 0; input < setup.input_kinds.size(); ++input) {
    const bool is_xmdf = setup.input_kinds[input] == FileKind::xmdf;
    std::unique_ptr<WaterLevels> levels;
    if (setup.inputs.types[0].is_water_level) {
      levels = std::make_unique<OwnWaterLevels>();
    } else if (is_xmdf) {
      levels = std::make_unique<XmdfWaterLevels>(setup.xmdf_files[xmdf_inputs], setup.tolerance);
    } else {
      levels = std::make_unique<DatWaterLevels>(setup.input_names[input]);
    }
    if (is_xmdf) ++xmdf_inputs;
    setup.inputs.water_levels.push_back(std::move(levels));
  }
}

void take_shape(RunSetup& setup) {
  setup.shape = PRIMARY_INPUT(setup).shape();
  for (const auto& source : setup.inputs.sources) {
    if (!setup.shape.cell_count) setup.shape.cell_count = source->shape().cell_count;
  }
}

bool has_output_times(const RunSetup& setup) {
  if (setup.dat_sources.size() < setup.inputs.sources.size()) return true;  // XMDF tells by itself
  return std::any_of(setup.dat_sources.begin(), setup.dat_sources.end(),
                     [](const DatSource* source) { return !source->at_end(); });
}

// The arrays of the operation. Without any output time nothing bears out the counts: then nothing
// is read and nothing sized, but by operations that write a map all the same, within limits.
ArrayUse arrays_of(const RunSetup& setup) {
  constexpr std::int32_t most_without_times = 1'000'000;
  ArrayUse arrays = setup.operation.arrays;
  arrays.bed = arrays.bed && setup.wet_dry_test;
  if (has_output_times(setup)) return arrays;
  if (!setup.operation.writes_without_times) return {};
  const std::int32_t cells = setup.shape.cell_count.value_or(0);
  if (std::max(setup.shape.node_count, cells) > most_without_times) {
    FAIL_RUN("ERROR - No output times in " + QUOTED(setup.input_names.front()));
  }
  return arrays;
}

// What the run will walk through, for whoever asks how far it is.
void announce_walk(const RunSetup& setup) {
  RunTally& tally = RUN_TALLY();
  const bool takes_first_only = !setup.operation.warning_of_further_inputs.empty();
  for (const auto& source : setup.inputs.sources) {
    tally.times_to_pass += source->likely_time_count();
    if (takes_first_only) return;
  }
}

// For an operation that looks at its inputs itself, which have told nothing yet.
void take_shape_untold(RunSetup& setup) {
  if (setup.xmdf_files.empty()) return;
  setup.shape = READ_XMDF_SHAPE_SILENTLY(setup.xmdf_files.front());
}

}  // namespace

void SET_UP_RUN(RunSetup& setup) {
  const OperationRow& operation = setup.operation;
  setup.wet_dry_test = !setup.options.no_wet_dry;
  take_inputs(setup);
  expand_sup(setup);
  announce_inputs(setup);
  refuse_withdrawn(operation);
  classify_inputs(setup);
  refuse_time_in_xmdf(setup);
  settle_tolerance(setup);
  setup.output_kind =
      SETTLE_OUTPUT_TYPE(operation.output, setup.options, setup.input_kinds, setup.naming);
  check_selection(setup);
  warn_of_dat(setup);

  open_inputs(setup);
  identify_inputs(setup);
  if (operation.selection == XmdfSelection::none) {
    take_shape_untold(setup);
  } else {
    if (!operation.opens_output_itself) OPEN_OUTPUT(setup);
    read_dat_headers(setup);
    CHOOSE_XMDF_DATASETS(setup);
    CHECK_CONSISTENCY(setup);
    note_water_levels(setup);
    take_shape(setup);
  }
  for (const InputType& type : setup.inputs.types) REPORT_INPUT_TYPE(type);
  choose_water_levels(setup);
  ALLOCATE_WORK_ARRAYS(arrays_of(setup), setup.shape, setup.work);
  announce_walk(setup);
}

OperationJob OPERATION_JOB(RunSetup& setup) {
  OperationJob job{.inputs = setup.inputs, .output = *setup.output, .work = setup.work};
  job.shape = setup.shape;
  job.wet_dry_test = setup.wet_dry_test;
  job.time = setup.time;
  job.tolerance = setup.tolerance;
  job.cutoff = setup.options.cutoff;
  job.range_start = setup.options.range_start.value_or(0);
  job.range_end = setup.options.range_end.value_or(0);
  job.ignore_stored = setup.options.ignore_stored;
  return job;
}

}  // namespace quillet
