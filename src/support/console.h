// The console: lines on standard output, the waits for Enter, and the one way in which a run ends.
// Every line is flushed, so that a batch log is complete whatever happens next. The exit status is
// always 0. A wait returns at once at the end of standard input, so nothing hangs in a pipeline.
#pragma once

#include <string_view>

namespace quillet {

// Where a message asks the user to report an internal fault.
constexpr std::string_view support_email = "support@quillet.example";

// One line.
void SAY(std::string_view line);

// An empty line, then the line.
void SAY_APART(std::string_view line);

// Prompts "Press Enter to Continue" and waits.
void PAUSE();

// Prompts with the given line and waits. False at the end of standard input.
bool WAIT_AFTER(std::string_view prompt);

// Ends the run: closes every open file, an empty line, "Press Enter to Close", waits.
[[noreturn]] void EXITS();

// Ends the run: closes every open file, "Press Enter to Continue", waits.
[[noreturn]] void END_WITH_PAUSE();

// Ends the run at once after its last line (-b).
[[noreturn]] void END_AT_ONCE();

// The message of a failure, set apart by an empty line, then EXITS.
[[noreturn]] void FAIL_RUN(std::string_view line);

// The message of a file that cannot be read or written: the quoted name, what was expected and
// found or the system's reason. Then EXITS.
[[noreturn]] void FAIL_READING(std::string_view file_name, std::string_view reason);
[[noreturn]] void FAIL_WRITING(std::string_view file_name, std::string_view reason);

// "ERROR - Could not allocate enough memory (RAM).", then EXITS.
[[noreturn]] void FAIL_ALLOCATION();

}  // namespace quillet
