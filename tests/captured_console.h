// The console of what runs in the test's own process.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "support/console.h"

namespace quillet::test {

// Keeps what is said. Nobody answers a prompt.
class CapturedConsole : public Console {
 public:
  CapturedConsole() : before(USE_CONSOLE(this)) {}
  CapturedConsole(const CapturedConsole&) = delete;
  CapturedConsole& operator=(const CapturedConsole&) = delete;
  ~CapturedConsole() override { USE_CONSOLE(before); }

  void say(std::string_view line) override { text.append(line).append("\n"); }
  bool wait_for_enter() override { return false; }

  std::string text;

 private:
  Console* before;
};

// What `run` says, and, where it ends the run, what the top of a run says then.
template <typename Run>
std::string console_of(Run run, std::optional<Ending>* ending = nullptr) {
  CapturedConsole console;
  try {
    run();
  } catch (const RunEnd& end) {
    if (ending != nullptr) *ending = end.ending;
    if (end.ending == Ending::press_enter_to_close) console.text += "\nPress Enter to Close\n";
    if (end.ending == Ending::press_enter_to_continue) console.text += "Press Enter to Continue\n";
  }
  return console.text;
}

// What `run` says, which must not end the run.
template <typename Run>
std::string console_of_returning(Run run) {
  std::optional<Ending> ending;
  std::string text = console_of(run, &ending);
  EXPECT_FALSE(ending.has_value()) << "ends the run:\n" << text;
  return text;
}

}  // namespace quillet::test
