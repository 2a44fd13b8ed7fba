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

}  // namespace quillet
