#include "driver/output_opening.h"

#include <cmath>

#include "dat/dat_sink.h"
#include "results/special_times.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/output_unit.h"
#include "support/text.h"
#include "xmdf/xmdf_sink.h"

namespace quillet {
namespace {

bool is_opened_by_set_up(Operation operation) {
  switch (operation) {
    case Operation::max:
    case Operation::min:
    case Operation::dif:
    case Operation::dur:
    case Operation::keep:
    case Operation::range:
    case Operation::remove:
    case Operation::trim:
    case Operation::con:
    case Operation::toi:
      return true;
    case Operation::ddur:
    case Operation::times:
    case Operation::xnfo:
    case Operation::va:
    case Operation::conv:
    case Operation::ensight:
      return false;
  }
  return false;
}

void refuse(const std::string& input, const std::string& output_name) {
  if (SAME_FILE(input, output_name) || SAME_FILE(input, PART_NAME(output_name))) {
    FAIL_RUN("ERROR - Output file is also an input file: " + QUOTED(output_name));
  }
}

bool asks_for(const RunSetup& setup, float time) {
  return setup.options.time_given &&
         std::fabs(setup.options.selected_time - time) < setup.tolerance;
}

// The folder of an XMDF output tells stored extremes from a time series.
std::string output_folder(const RunSetup& setup) {
  switch (setup.operation) {
    case Operation::max:
      return "Maximums";
    case Operation::min:
      return "Minimums";
    case Operation::keep:
    case Operation::dif:
    case Operation::trim:
    case Operation::va:
      if (asks_for(setup, stored_maximum_time)) return "Maximums";
      if (asks_for(setup, stored_minimum_time)) return "Minimums";
      return "Temporal";
    default:
      return "Temporal";
  }
}

void open_sink(RunSetup& setup) {
  const std::string& name = setup.naming.base_file_name;
  REFUSE_INPUT_AS_OUTPUT(setup, name);
  const DatasetNames names{setup.naming.group_name, output_folder(setup),
                           setup.naming.dataset_name};
  if (setup.output_kind == FileKind::xmdf) {
    setup.output = std::make_unique<XmdfSink>(name, names);
  } else {
    setup.output = std::make_unique<DatSink>(name, names);
  }
}

// Beside the input, whose own name stays in it.
std::string velocity_angle_name(const RunSetup& setup) {
  const std::string input = FILENAMEPATH(setup.options.inputs.front());
  if (setup.input_kinds.front() == FileKind::dat) return input + "_va.dat";
  return input + "_" + setup.options.type_code + "_va.xmdf";
}

// A .dat file is named after itself.
std::string velocity_angle_dataset(const RunSetup& setup) {
  if (setup.output_kind != FileKind::xmdf) return "";
  if (asks_for(setup, stored_maximum_time)) return "Vector Angle Maximums";
  if (asks_for(setup, stored_minimum_time)) return "Vector Angle Minimums";
  return "Vector Angle";
}

}  // namespace

void REFUSE_INPUT_AS_OUTPUT(const RunSetup& setup, const std::string& output_name) {
  for (std::size_t input = 0; input < setup.options.inputs.size(); ++input) {
    const std::string& name = setup.options.inputs[input];
    refuse(name, output_name);
    refuse(setup.inputs.types[input].mesh_file, output_name);
    if (setup.input_kinds[input] == FileKind::dat) refuse(WATER_LEVEL_FILE(name), output_name);
  }
}

void OPEN_OUTPUT(RunSetup& setup) {
  if (is_opened_by_set_up(setup.operation)) open_sink(setup);
}

void OPEN_VELOCITY_ANGLE_OUTPUT(RunSetup& setup) {
  if (setup.options.inputs.size() > 1) {
    SAY_APART("WARNING - Only one file for -va (velocity angle) option");
  }
  if (!setup.naming.user_named) setup.naming.base_file_name = velocity_angle_name(setup);
  setup.naming.dataset_name = velocity_angle_dataset(setup);
  open_sink(setup);
}

}  // namespace quillet
