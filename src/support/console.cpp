#include "support/console.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/file_units.h"
#include "support/text.h"

namespace quillet {
namespace {

// Reads standard input to the end of a line. False when it ends before.
bool wait_for_enter() {
  for (int c = std::getchar(); c != EOF; c = std::getchar()) {
    if (c == '\n') return true;
  }
  return false;
}

// Every end of a run passes here.
[[noreturn]] void end_run(std::string_view gap, std::string_view prompt) {
  CLOSE_ALL_UNITS();
  if (!prompt.empty()) {
    std::fputs(std::string(gap).c_str(), stdout);
    WAIT_AFTER(prompt);
  }
  std::exit(EXIT_SUCCESS);
}

}  // namespace

void SAY(std::string_view line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void SAY_APART(std::string_view line) {
  SAY("");
  SAY(line);
}

bool WAIT_AFTER(std::string_view prompt) {
  SAY(prompt);
  return wait_for_enter();
}

void PAUSE() {
  WAIT_AFTER("Press Enter to Continue");
}

void EXITS() {
  end_run("\n", "Press Enter to Close");
}

void END_WITH_PAUSE() {
  end_run("", "Press Enter to Continue");
}

void END_AT_ONCE() {
  end_run("", "");
}

void FAIL_RUN(std::string_view line) {
  SAY_APART(line);
  EXITS();
}

void FAIL_READING(std::string_view file_name, std::string_view reason) {
  FAIL_RUN("ERROR - Reading file " + QUOTED(file_name) + ": " + std::string(reason));
}

void FAIL_WRITING(std::string_view file_name, std::string_view reason) {
  FAIL_RUN("ERROR - Writing file " + QUOTED(file_name) + ": " + std::string(reason));
}

void FAIL_ALLOCATION() {
  FAIL_RUN("ERROR - Could not allocate enough memory (RAM).");
}

}  // namespace quillet
