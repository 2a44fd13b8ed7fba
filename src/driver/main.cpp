#include <csignal>
#include <string>
#include <vector>

#include "driver/run.h"
#include "support/interrupt.h"
#include "support/standard_console.h"
#include "support/standard_handles.h"

// The exit status is always 0: users' scripts look at the console.
int main(int argc, char** argv) {
  quillet::OPEN_STANDARD_HANDLES();
  // A console that goes away must not stop a run that is writing a file, and a file that becomes
  // too large is an error of the write that says so.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  quillet::NOTE_INTERRUPTS();
  quillet::StandardConsole console;
  quillet::RUN_QUILLET(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc), console);
  quillet::DIE_OF_INTERRUPT();
}
