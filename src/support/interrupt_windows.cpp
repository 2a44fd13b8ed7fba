#include <windows.h>

#include <atomic>

#include "support/interrupt.h"

namespace quillet {
namespace {

std::atomic<bool> is_noted = false;

// Called on a thread of its own. What it does not handle ends the process.
BOOL WINAPI note(DWORD) {
  return is_noted.exchange(true) ? FALSE : TRUE;
}

}  // namespace

void NOTE_INTERRUPTS() {
  ::SetConsoleCtrlHandler(note, TRUE);
}

bool INTERRUPTED() {
  return is_noted;
}

// Reading from a console ends with an interrupt.
bool AWAIT_INPUT() {
  return !INTERRUPTED();
}

void DIE_OF_INTERRUPT() {
  constexpr UINT ended_by_control_c = 0xC000013A;
  if (INTERRUPTED()) ::ExitProcess(ended_by_control_c);
}

}  // namespace quillet
