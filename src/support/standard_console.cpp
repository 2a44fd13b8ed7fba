#include "support/standard_console.h"

#include <cstdio>

namespace quillet {

void StandardConsole::say(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

bool StandardConsole::wait_for_enter() {
  for (int c = std::getchar(); c != EOF; c = std::getchar()) {
    if (c == '\n') return true;
  }
  return false;
}

}  // namespace quillet
