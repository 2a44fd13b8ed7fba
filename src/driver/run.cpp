#include "driver/run.h"

#include <new>
#include <string_view>

#include "driver/argument_parser.h"
#include "driver/operation_choice.h"
#include "driver/option_checks.h"
#include "driver/run_setup.h"
#include "driver/usage_text.h"
#include "support/console.h"

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

Ending run(const std::vector<std::string>& arguments) {
  SAY_APART("Build 2020-07-AH");
  SAY("");
  if (arguments.empty()) {
    PRINT_USAGE();
    return Ending::press_enter_to_continue;
  }
  const RunOptions options = PARSE_ARGUMENTS(arguments);
  CHECK_OPTIONS(options);
  const OperationRow& operation = CHOOSE_OPERATION(options);
  if (options.inputs.empty()) FAIL_RUN("ERROR - No input files specified.");
  RunSetup setup{.operation = operation, .options = options};
  setup.naming = NAME_OUTPUT(operation, options);
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
