#include "support/console.h"

#include <utility>

#include "support/interrupt.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {
namespace {

Console* current_console = nullptr;

std::function<void()>& owed_lines() {
  static std::function<void()> tell;
  return tell;
}

std::string& last_error() {
  static std::string line;
  return line;
}

void show(std::string_view text) {
  if (owed_lines()) std::exchange(owed_lines(), nullptr)();
  const std::string line = SHOWN(text);
  if (line.starts_with("ERROR") || line.starts_with("Error")) {
    last_error() = line;
    ++RUN_TALLY().errors;
  } else if (line.starts_with("WARNING") || line.starts_with("Warning")) {
    ++RUN_TALLY().warnings;
  }
  if (current_console != nullptr) current_console->say(line);
}

[[noreturn]] void end_run(Ending ending) {
  throw RunEnd(last_error(), ending);
}

}  // namespace

Console* USE_CONSOLE(Console* console) {
  last_error().clear();
  return std::exchange(current_console, console);
}

LinesOwed::LinesOwed(std::function<void()> tell) {
  owed_lines() = std::move(tell);
}

LinesOwed::~LinesOwed() {
  owed_lines() = nullptr;
}

void SAY(std::string_view line) {
  END_IF_INTERRUPTED();
  show(line);
}

void SAY_APART(std::string_view line) {
  SAY("");
  SAY(line);
}

bool WAIT_AFTER(std::string_view prompt) {
  SAY(prompt);
  const bool is_answered = current_console != nullptr && current_console->wait_for_enter();
  END_IF_INTERRUPTED();
  return is_answered;
}

void PAUSE() {
  WAIT_AFTER("Press Enter to Continue");
}

void ASK_TO_TRY_AGAIN(const std::string& file_name, const std::string& reason,
                      const std::string& suggestion) {
  SAY_APART("ERROR - Could not open file: " + QUOTED(file_name));
  SAY_HELP(reason);
  if (!suggestion.empty()) SAY_HELP(suggestion);
  if (!WAIT_AFTER("Press Enter to try again")) EXITS();
}

void SAY_HELP(std::string_view line) {
  SAY("   " + std::string(line));
}

void EXITS() {
  end_run(Ending::press_enter_to_close);
}

void END_WITH_PAUSE() {
  end_run(Ending::press_enter_to_continue);
}

void FAIL_RUN(std::string_view line) {
  SAY_APART(line);
  EXITS();
}

void FAIL_RUN(std::string_view line, std::string_view detail) {
  SAY_APART(line);
  SAY_HELP(detail);
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

void END_IF_INTERRUPTED() {
  if (!INTERRUPTED()) return;
  show("");
  show("ERROR - Interrupted.");
  end_run(Ending::at_once);
}

void GO_ON_WITHOUT_LINE() {
  END_IF_INTERRUPTED();
  if (current_console != nullptr) current_console->go_on();
}

}  // namespace quillet
