#include <string>
#include <vector>

#include "driver/run.h"
#include "support/interrupt.h"
#include "support/standard_console.h"
#include "support/system_process.h"

int main(int argc, char** argv) {
  quillet::PREPARE_PROCESS();
  quillet::NOTE_INTERRUPTS();
  quillet::StandardConsole console;
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int status = quillet::RUN_QUILLET(arguments, console);
  quillet::DIE_OF_INTERRUPT();
  return status;
}
