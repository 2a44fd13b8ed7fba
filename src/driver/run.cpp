#include "driver/run.h"

#include <chrono>
#include <cstdio>
#include <new>
#include <optional>
#include <string_view>

#include "driver/argument_parser.h"
#include "driver/help_text.h"
#include "driver/operation_choice.h"
#include "driver/option_checks.h"
#include "driver/own_options.h"
#include "driver/run_setup.h"
#include "driver/run_summary.h"
#include "driver/usage_text.h"
#include "results/written_values.h"
#include "support/console.h"
#include "support/progress_console.h"
#include "support/run_tally.h"
#include "support/standard_console.h"
#include "support/system_crash.h"
#include "support/terminal.h"
#include "support/version.h"
#include "support/work_crew.h"

namespace quillet {
namespace {

Ending end_of_operation(LastWords last_words, bool batch) {
  const bool is_short = last_words == LastWords::finished;
  if (is_short) SAY_APART("Finished.");
  if (batch) return Ending::at_once;
  return is_short ? Ending::press_enter_to_continue : Ending::press_enter_to_close;
}

Ending perform(RunSetup& setup) {
  const OperationRow& operation = setup.operation;
  const std::string_view warning = operation.warning_of_further_inputs;
  if (!warning.empty() && setup.inputs.sources.size() > 1) SAY_APART(warning);
  operation.perform(setup);
  return end_of_operation(operation.last_words, setup.options.batch);
}

// What the end of a run needs of it, however it ends.
struct RunNotes {
  RequestedRun requested;
  bool has_failed = false;
  bool wants_summary = false;
};

void start_progress(const RunOptions& options, Console& console,
                    std::optional<ProgressConsole>& progress) {
  const bool is_terminal = STANDARD_ERROR_IS_TERMINAL();
  if (!options.progress.value_or(is_terminal)) return;
  progress.emplace(console, is_terminal ? ProgressConsole::Form::line_of_terminal
                                        : ProgressConsole::Form::lines_of_log);
}

void note_options(const RunOptions& options, RunNotes& notes) {
  notes.wants_summary = options.summary;
  notes.requested.inputs = options.inputs;
  WRITTEN_VALUES().are_wanted = options.summary;
  WORK_CREW().set_thread_count(options.threads.value_or(USUAL_THREAD_COUNT()));
}

Ending run_parsed(const RunOptions& options, RunNotes& notes) {
  CHECK_OPTIONS(options);
  const OperationRow& operation = CHOOSE_OPERATION(options);
  notes.requested.operation =
      std::string(operation.flag) + " (" + std::string(operation.meaning) + ")";
  if (options.inputs.empty()) FAIL_RUN("ERROR - No input files specified.");
  RunSetup setup{.operation = operation, .options = options};
  setup.naming = NAME_OUTPUT(operation, options);
  SET_UP_RUN(setup);
  return perform(setup);
}

Ending run(const std::vector<std::string>& arguments, const EarlyOptions& early, Console& console,
           RunNotes& notes) {
  if (early.help) {
    PRINT_HELP();
    return Ending::at_once;
  }
  if (early.version) {
    SAY("quillet " + std::string(PROGRAM_VERSION()));
    return Ending::at_once;
  }
  SAY_APART("Build 2020-07-AH");
  SAY("");
  if (arguments.empty()) {
    PRINT_USAGE();
    return Ending::press_enter_to_continue;
  }
  const RunOptions options = PARSE_ARGUMENTS(arguments);
  note_options(options, notes);
  std::optional<ProgressConsole> progress;
  start_progress(options, console, progress);
  const ConsoleInUse in_use(progress ? *progress : console);
  return run_parsed(options, notes);
}

// Everything that the run has opened is closed when this returns.
Ending run_to_its_end(const std::vector<std::string>& arguments, const EarlyOptions& early,
                      Console& console, RunNotes& notes) try {
  return run(arguments, early, console, notes);
} catch (const RunEnd& end) {
  notes.has_failed = true;
  return end.ending;
} catch (const std::bad_alloc&) {
  // Of something small: where arrays are sized, the sizing says so.
  notes.has_failed = true;
  ++RUN_TALLY().errors;
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

void print_summary(const RequestedRun& requested, std::chrono::steady_clock::time_point start) {
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
  const std::string text = RUN_SUMMARY(requested, elapsed.count());
  std::fwrite(text.data(), 1, text.size(), stderr);
}

int perform_run(const std::vector<std::string>& arguments, const EarlyOptions& early,
                Console& console) {
  const auto start = std::chrono::steady_clock::now();
  RunNotes notes;
  const Ending ending = run_to_its_end(arguments, early, console, notes);
  if (notes.wants_summary) print_summary(notes.requested, start);
  wait_at_the_end(ending, console);
  return early.strict && (notes.has_failed || RUN_TALLY().errors > 0) ? 1 : 0;
}

}  // namespace

int RUN_QUILLET(const std::vector<std::string>& arguments, Console& console) {
  RUN_TALLY() = {};
  WRITTEN_VALUES() = {};
  const EarlyOptions early = FIND_EARLY_OPTIONS(arguments);
  END_CRASHES_IN_A_LINE({.waits_for_enter = !early.strict, .status = early.strict ? 1 : 0});
  UnattendedConsole unattended(console);
  Console& used = early.strict ? static_cast<Console&>(unattended) : console;
  const ConsoleInUse in_use(used);
  return perform_run(arguments, early, used);
}

}  // namespace quillet
