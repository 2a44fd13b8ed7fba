#include "driver/run.h"

#include <algorithm>
#include <new>
#include <utility>

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

// The last words after an operation: "Finished.", or none.
enum class LastWords { none, finished };

Ending end_of_operation(LastWords last_words, bool batch) {
  const bool is_short = last_words == LastWords::finished;
  if (is_short) SAY_APART("Finished.");
  if (batch) return Ending::at_once;
  return is_short ? Ending::press_enter_to_continue : Ending::press_enter_to_close;
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
  LastWords last_words;
};

constexpr Dispatch dispatches[] = {
    {Operation::max, run_over_times<run_extreme<Extreme::maximum>>, LastWords::finished},
    {Operation::min, run_over_times<run_extreme<Extreme::minimum>>, LastWords::finished},
    {Operation::dif, run_over_times<RUN_DIFFERENCE>, LastWords::none},
    {Operation::trim, run_over_times<RUN_TRIM>, LastWords::none},
    {Operation::va, run_velocity_angle, LastWords::none},
    {Operation::keep, run_over_times<RUN_KEEP>, LastWords::none},
    {Operation::remove, run_over_times<RUN_REMOVE>, LastWords::none},
    {Operation::range, run_over_times<RUN_RANGE>, LastWords::none},
    {Operation::con, run_over_times<RUN_CONCATENATE>, LastWords::none},
    {Operation::times, list_times, LastWords::finished},
    {Operation::dur, run_over_times<RUN_DURATION>, LastWords::none},
    {Operation::toi, run_over_times<RUN_TIME_OF_INCREASE>, LastWords::none},
    {Operation::conv, CONVERT_INPUTS, LastWords::none},
    {Operation::ensight, EXPORT_INPUTS_TO_ENSIGHT, LastWords::none},
    {Operation::xnfo, REPORT_XMDF_INPUTS, LastWords::finished},
};

Ending perform(RunSetup& setup) {
  const auto dispatch =
      std::find_if(std::begin(dispatches), std::end(dispatches),
                   [&](const Dispatch& row) { return row.operation == setup.operation; });
  if (dispatch == std::end(dispatches)) {
    SAY_APART("ERROR - No operational flag specified");
    SAY("Specify one of -max, -dif, -k, -r, -Range, -con, -dur, -ddur, -trim or -VA");
    END_WITH_PAUSE();
  }
  dispatch->perform(setup);
  return end_of_operation(dispatch->last_words, setup.options.batch);
}

Ending run(const std::vector<std::string>& arguments) {
  SAY_APART("Build 2020-07-AH");
  SAY("");
  if (arguments.empty()) {
    PRINT_USAGE();
    return Ending::press_enter_to_continue;
  }
  ParsedArguments parsed = PARSE_ARGUMENTS(arguments);
  CHECK_OPTIONS(parsed);
  RunSetup setup;
  setup.options = std::move(parsed.options);
  setup.operation = CHOOSE_OPERATION(setup.options);
  if (setup.options.inputs.empty()) FAIL_RUN("ERROR - No input files specified.");
  setup.naming = NAME_OUTPUT(setup.operation, setup.options);
  SET_UP_RUN(setup);
  return perform(setup);
}

// Everything that the run has opened is closed when this returns.
Ending run_to_its_end(const std::vector<std::string>& arguments, Console& console) try {
  return run(arguments);
} catch (const RunEnd& end) {
  return end.ending;
} catch (const std::bad_alloc&) {
  // Of something small: where arrays are sized, the sizing says so.
  console.say("");
  console.say("ERROR - Could not allocate enough memory (RAM).");
  return Ending::press_enter_to_close;
}

void wait_at_the_end(Ending ending, Console& console) {
  if (ending == Ending::at_once) return;
  if (ending == Ending::press_enter_to_close) console.say("");
  console.say(ending == Ending::press_enter_to_close ? "Press Enter to Close"
                                                     : "Press Enter to Continue");
  console.wait_for_enter();
}

}  // namespace

void RUN_QUILLET(const std::vector<std::string>& arguments, Console& console) {
  Console* const before = USE_CONSOLE(&console);
  const Ending ending = run_to_its_end(arguments, console);
  wait_at_the_end(ending, console);
  USE_CONSOLE(before);
}

}  // namespace quillet
