// The console: lines, the waits for Enter, and the ways in which a run ends. Only one thread of a
// program speaks. Unless a program states a console, nothing is printed and nobody waits, so that a
// program that uses the library hears of a failure by the exception alone.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "support/run_end.h"

namespace quillet {

// Where a message asks the user to report an internal fault.
constexpr std::string_view support_email = "support@quillet.example";

class Console {
 public:
  virtual ~Console() = default;

  // Shows one line, which comes without its line end.
  virtual void say(std::string_view line) = 0;

  // Waits for Enter. False when there is nobody to wait for.
  virtual bool wait_for_enter() = 0;

  // Called now and then while work goes on without a line.
  virtual void go_on() {}
};

// Makes this the console of the program; null for none. Returns the one before.
Console* USE_CONSOLE(Console* console);

// Makes a console that of the program for as long as the object lives.
class ConsoleInUse {
 public:
  explicit ConsoleInUse(Console& console) : before(USE_CONSOLE(&console)) {}
  ConsoleInUse(const ConsoleInUse&) = delete;
  ConsoleInUse& operator=(const ConsoleInUse&) = delete;
  ~ConsoleInUse() { USE_CONSOLE(before); }

 private:
  Console* before;
};

// While an object of this kind lives, `tell` is called before the next line is shown, once, and may
// itself show lines: those of work that goes on beside the main thread and was asked for earlier.
class LinesOwed {
 public:
  explicit LinesOwed(std::function<void()> tell);
  LinesOwed(const LinesOwed&) = delete;
  LinesOwed& operator=(const LinesOwed&) = delete;
  ~LinesOwed();
};

// One line, as SHOWN shows it: names and descriptions come from files. Where an interrupt has come,
// ends the run instead, as waits do.
void SAY(std::string_view line);

// An empty line, then the line.
void SAY_APART(std::string_view line);

// Prompts "Press Enter to Continue" and waits.
void PAUSE();

// Prompts with the given line and waits. False when there is nobody to wait for.
bool WAIT_AFTER(std::string_view prompt);

// After a file could not be opened: says so and why, then what may help unless that is empty;
// prompts, and waits so that the user can put the file in place and try again. Ends the run when
// there is nobody to ask.
void ASK_TO_TRY_AGAIN(const std::string& file_name, const std::string& reason,
                      const std::string& suggestion = "");

// A line that helps with the message before it: the file, what was found, the system's reason, a
// remedy. Messages that users' scripts look for stand alone on their lines.
void SAY_HELP(std::string_view line);

// What all of these do: they throw RunEnd, with the last error line as its message.

// Ends the run with "Press Enter to Close".
[[noreturn]] void EXITS();

// Ends the run with "Press Enter to Continue".
[[noreturn]] void END_WITH_PAUSE();

// The message of a failure, set apart by an empty line, then EXITS.
[[noreturn]] void FAIL_RUN(std::string_view line);

// The same with a line below it that says what helps (the file, the dataset, the value asked for),
// indented: the message itself is a text that users' scripts look for.
[[noreturn]] void FAIL_RUN(std::string_view line, std::string_view detail);

// The message of a file that cannot be read or written: the quoted name, what was expected and
// found or the system's reason. Then EXITS.
[[noreturn]] void FAIL_READING(std::string_view file_name, std::string_view reason);
[[noreturn]] void FAIL_WRITING(std::string_view file_name, std::string_view reason);

// "ERROR - Could not allocate enough memory (RAM).", then EXITS.
[[noreturn]] void FAIL_ALLOCATION();

// Ends the run when the user, or the system, has asked for it: see interrupt.h. Loops that may go
// on for long without a line call it.
void END_IF_INTERRUPTED();

// The same where output times pass meanwhile: the console may show how far the run is.
void GO_ON_WITHOUT_LINE();

}  // namespace quillet
