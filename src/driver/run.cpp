#include "driver/run.h"

#include <algorithm>
#include <csignal>

#include "driver/argument_parser.h"
#include "driver/operation_choice.h"
#include "driver/option_checks.h"
#include "driver/output_opening.h"
#include "driver/run_setup.h"
#include "driver/usage_text.h"
#include "operations/difference.h"
#include "operations/extreme.h"
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

struct Dispatch {
  Operation operation;
  void (*perform)(OperationRun& run);
  Ending ending;
};

constexpr Dispatch dispatches[] = {
    {Operation::max, [](OperationRun& run) { RUN_EXTREME(Extreme::maximum, run); },
     Ending::short_path},
    {Operation::min, [](OperationRun& run) { RUN_EXTREME(Extreme::minimum, run); },
     Ending::short_path},
    {Operation::dif, RUN_DIFFERENCE, Ending::normal},
    {Operation::trim, RUN_TRIM, Ending::normal},
    {Operation::va, RUN_VELOCITY_ANGLE, Ending::normal},
};

OperationRun operation_run(RunSetup& setup) {
  OperationRun run{.inputs = setup.inputs, .output = *setup.output, .work = setup.work};
  run.node_count = setup.node_count;
  run.cell_count = setup.cell_count;
  run.is_vector = setup.is_vector;
  run.is_finite_volume = setup.is_finite_volume;
  run.wet_dry_test = setup.wet_dry_test;
  if (setup.options.time_given) run.time = setup.options.selected_time;
  run.tolerance = setup.tolerance;
  run.cutoff = setup.options.cutoff;
  run.ignore_stored = setup.options.ignore_stored;
  return run;
}

[[noreturn]] void perform(RunSetup& setup) {
  const auto dispatch =
      std::find_if(std::begin(dispatches), std::end(dispatches),
                   [&](const Dispatch& row) { return row.operation == setup.operation; });
  if (dispatch == std::end(dispatches)) FAIL("ERROR - This version cannot perform the operation.");
  if (setup.operation == Operation::va) OPEN_VELOCITY_ANGLE_OUTPUT(setup);
  OperationRun run = operation_run(setup);
  dispatch->perform(run);
  if (dispatch->ending == Ending::short_path) end_on_short_path(setup.options.batch);
  end_normally(setup.options.batch);
}

}  // namespace

void RUN_QUILLET(const std::vector<std::string>& arguments) {
  // A console that goes away must not stop a run that is writing a file.
  std::signal(SIGPIPE, SIG_IGN);
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
  if (setup.options.inputs.empty()) FAIL("ERROR - No input files specified.");
  setup.naming = NAME_OUTPUT(setup.operation, setup.options);
  SET_UP_RUN(setup);
  perform(setup);
}

}  // namespace quillet
