#include <string>
#include <vector>

#include "driver/run.h"
#include "support/interrupt.h"
#include "support/standard_console.h"
#include "support/system_process.h"
#include "xf/xf_trial.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  int status = 0;
  if (quillet::IS_CHILD_OF_ITSELF(arguments, quillet::xf_trial_task, status)) return status;
  quillet::PREPARE_PROCESS();
  quillet::NOTE_INTERRUPTS();
  quillet::StandardConsole console;
  status = quillet::RUN_QUILLET(arguments, console);
  quillet::DIE_OF_INTERRUPT();
  return status;
}
