#include "support/standard_console.h"

#include <cstdio>

#include "support/interrupt.h"

namespace quillet {

void StandardConsole::say(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

bool StandardConsole::wait_for_enter() {
  for (int c = 0; c != EOF && AWAIT_INPUT();) {
    c = std::getchar();
    if (c == '\n') return true;
  }
  return false;
}

}  // namespace quillet
