#include "driver/run.h"

#include <algorithm>
#include <csignal>

#include "driver/argument_parser.h"
#include "driver/conversion_run.h"
#include "driver/ensight_run.h"
#include "driver/operation_choice.h"
#include "driver/option_checks.h"
#include "driver/output_opening.h"
#include "driver/run_setup.h"
#include "driver/usage_text.h"
#include "driver/xmdf_report_run.h"
#include "operations/difference.h"
#include "operations/duration.h"
#include "operations/extreme.h"
#include "operations/time_list.h"
#include "operations/time_selection.h"
#include "operations/trim.h"
#include "operations/velocity_angle.h"
#include "support/console.h"

namespace quillet {
namespace {

// How a run ends after its operation: on the short path ("Finished.") or as most do.
enum class Ending { normal, short_path };

[[noreturn]] void end_normally(bool batch) {
  if (batch) END_AT_ONCE();
  EXITS();
}

[[noreturn]] void end_on_short_path(bool batch) {
  SAY_APART("Finished.");
  if (batch) END_AT_ONCE();
  END_WITH_PAUSE();
}

OperationRun operation_run(RunSetup& setup) {
  OperationRun run{.inputs = setup.inputs, .output = *setup.output, .work = setup.work};
  run.node_count = setup.node_count;
  run.cell_count = setup.cell_count;
  run.is_vector = setup.is_vector;
  run.wet_dry_test = setup.wet_dry_test;
  if (setup.options.time_given) run.time = setup.options.selected_time;
  run.tolerance = setup.tolerance;
  run.cutoff = setup.options.cutoff;
  run.range_start = setup.options.range_start;
  run.range_end = setup.options.range_end;
  run.ignore_stored = setup.options.ignore_stored;
  return run;
}

// Operations over output times, the same whatever the file formats.
template <void (*operation)(OperationRun&)>
void run_over_times(RunSetup& setup) {
  OperationRun run = operation_run(setup);
  operation(run);
}

template <Extreme extreme>
void run_extreme(OperationRun& run) {
  RUN_EXTREME(extreme, run);
}

void run_velocity_angle(RunSetup& setup) {
  OPEN_VELOCITY_ANGLE_OUTPUT(setup);
  run_over_times<RUN_VELOCITY_ANGLE>(setup);
}

void list_times(RunSetup& setup) {
  if (setup.inputs.sources.size() > 1) SAY_APART("WARNING - Only one file for -times option");
  REFUSE_INPUT_AS_OUTPUT(setup, setup.naming.base_file_name);
  LIST_OUTPUT_TIMES(*setup.inputs.sources.front(), setup.naming.base_file_name);
}

struct Dispatch {
  Operation operation;
  void (*perform)(RunSetup& setup);
  Ending ending;
};

constexpr Dispatch dispatches[] = {
    {Operation::max, run_over_times<run_extreme<Extreme::maximum>>, Ending::short_path},
    {Operation::min, run_over_times<run_extreme<Extreme::minimum>>, Ending::short_path},
    {Operation::dif, run_over_times<RUN_DIFFERENCE>, Ending::normal},
    {Operation::trim, run_over_times<RUN_TRIM>, Ending::normal},
    {Operation::va, run_velocity_angle, Ending::normal},
    {Operation::keep, run_over_times<RUN_KEEP>, Ending::normal},
    {Operation::remove, run_over_times<RUN_REMOVE>, Ending::normal},
    {Operation::range, run_over_times<RUN_RANGE>, Ending::normal},
    {Operation::con, run_over_times<RUN_CONCATENATE>, Ending::normal},
    {Operation::times, list_times, Ending::short_path},
    {Operation::dur, run_over_times<RUN_DURATION>, Ending::normal},
    {Operation::toi, run_over_times<RUN_TIME_OF_INCREASE>, Ending::normal},
    {Operation::conv, CONVERT_INPUTS, Ending::normal},
    {Operation::ensight, EXPORT_INPUTS_TO_ENSIGHT, Ending::normal},
    {Operation::xnfo, REPORT_XMDF_INPUTS, Ending::short_path},
};

[[noreturn]] void perform(RunSetup& setup) {
  const auto dispatch =
      std::find_if(std::begin(dispatches), std::end(dispatches),
                   [&](const Dispatch& row) { return row.operation == setup.operation; });
  if (dispatch == std::end(dispatches)) {
    SAY_APART("ERROR - No operational flag specified");
    SAY("Specify one of -max, -dif, -k, -r, -Range, -con, -dur, -ddur, -trim or -VA");
    END_WITH_PAUSE();
  }
  dispatch->perform(setup);
  if (dispatch->ending == Ending::short_path) end_on_short_path(setup.options.batch);
  end_normally(setup.options.batch);
}

}  // namespace

void RUN_QUILLET(const std::vector<std::string>& arguments) {
  // A console that goes away must not stop a run that is writing a file, and a file that becomes
  // too large is an error of the write that says so.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  SAY_APART("Build 2020-07-AH");
  SAY("");
  if (arguments.empty()) {
    PRINT_USAGE();
    END_WITH_PAUSE();
  }
  ParsedArguments parsed = PARSE_ARGUMENTS(arguments);
  CHECK_OPTIONS(parsed);
  RunSetup setup;
  setup.options = std::move(parsed.options);
  setup.operation = CHOOSE_OPERATION(setup.options);
  if (setup.options.inputs.empty()) FAIL_RUN("ERROR - No input files specified.");
  setup.naming = NAME_OUTPUT(setup.operation, setup.options);
  SET_UP_RUN(setup);
  perform(setup);
}

}  // namespace quillet
