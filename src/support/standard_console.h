// The console of the program: standard output and standard input. Every line is flushed, so that a
// batch log is complete whatever happens next. A wait returns at once at the end of standard input,
// so nothing hangs in a pipeline.
#pragma once

#include "support/console.h"

namespace quillet {

class StandardConsole : public Console {
 public:
  void say(std::string_view line) override;
  // Reads standard input to the end of a line; false when it ends before.
  bool wait_for_enter() override;
};

// For scripts: another console on which nobody is waited for and nothing is read.
class UnattendedConsole : public Console {
 public:
  explicit UnattendedConsole(Console& shown_on) : console(shown_on) {}
  void say(std::string_view line) override { console.say(line); }
  bool wait_for_enter() override { return false; }

 private:
  Console& console;
};

}  // namespace quillet
