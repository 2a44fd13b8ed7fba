// The file-unit manager: knows how everything that is open is closed, so that a run that ends in
// the middle leaves nothing open and no empty temporary file behind.
#pragma once

#include <functional>
#include <string>

namespace quillet {

// Registers what is open; the routine is called when the run ends while it still is. It must not
// end the run itself. Returns the unit number, 1 or more.
int REGISTER_UNIT(std::function<void()> close);

// What the unit stands for was closed in the ordinary way, or moved. Unit 0 is no unit.
void RELEASE_UNIT(int unit);

// Closes everything that is registered, newest first.
void CLOSE_ALL_UNITS();

// After a file could not be opened: prints the error, prompts, and waits so that the user can put
// the file in place and try again. Ends the run when standard input has ended.
void ASK_TO_TRY_AGAIN(const std::string& file_name);

}  // namespace quillet
