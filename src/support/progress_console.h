// A console with a line on standard error that tells how far the run is. Standard output never sees
// it.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "support/console.h"

namespace quillet {

class ProgressConsole : public Console {
 public:
  enum class Form {
    line_of_terminal,  // one line, drawn again and again, away before every line of the console
    lines_of_log,      // a whole line every ten seconds
  };

  // Shows everything on the other console. Nothing is drawn in the first half second of a run.
  ProgressConsole(Console& shown_on, Form how);
  ProgressConsole(const ProgressConsole&) = delete;
  ProgressConsole& operator=(const ProgressConsole&) = delete;
  // Leaves no line behind.
  ~ProgressConsole() override;

  void say(std::string_view line) override;
  bool wait_for_enter() override;
  void go_on() override { draw_when_due(); }

 private:
  using Clock = std::chrono::steady_clock;

  void draw_when_due();
  void draw();
  void clear();

  Console& console;
  const Form form;
  const Clock::time_point start;
  Clock::time_point next;        // when the line may be drawn again
  std::size_t drawn_length = 0;  // characters on the terminal
};

// The line: "37 % | 12 output times | 850 MB/s | 3 s left", at most `width` characters. `seconds`
// is the time since the start.
std::string PROGRESS_LINE(double seconds, std::size_t width);

}  // namespace quillet
