#include <csignal>
#include <string>
#include <vector>

#include "driver/run.h"
#include "support/interrupt.h"
#include "support/standard_console.h"
#include "support/standard_handles.h"

int main(int argc, char** argv) {
  quillet::OPEN_STANDARD_HANDLES();
  // A console that goes away must not stop a run that is writing a file, and a file that becomes
  // too large is an error of the write that says so.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  quillet::NOTE_INTERRUPTS();
  quillet::StandardConsole console;
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  const int status = quillet::RUN_QUILLET(arguments, console);
  quillet::DIE_OF_INTERRUPT();
  return status;
}
