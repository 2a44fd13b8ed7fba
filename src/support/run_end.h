// The one exception: a run that ends before its work is done. Whoever ends a run has said why on
// the console by then; what was open is closed while the exception passes. Nothing recovers from
// it: it is caught at the top of a run, or by a program that uses the library.
#pragma once

#include <stdexcept>
#include <string>

namespace quillet {

// What stands between the last line of a run and its end.
enum class Ending {
  at_once,                  // nothing (-b)
  press_enter_to_close,     // an empty line, "Press Enter to Close", a wait
  press_enter_to_continue,  // "Press Enter to Continue", a wait
};

class RunEnd : public std::runtime_error {
 public:
  // The message is the line that the console showed.
  RunEnd(const std::string& message, Ending how) : std::runtime_error(message), ending(how) {}

  Ending ending;
};

}  // namespace quillet
