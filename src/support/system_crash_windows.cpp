#include <windows.h>

#include <csignal>
#include <string_view>

#include "support/file_at_risk.h"
#include "support/system_crash.h"

namespace quillet {
namespace {

CrashEnding how_to_end;

// The heap and the C library may be what has crashed: the system alone is asked.
void write_directly(std::string_view text) {
  DWORD written = 0;
  ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), text.data(), static_cast<DWORD>(text.size()),
              &written, nullptr);
}

void wait_for_enter() {
  char typed = 0;
  DWORD count = 1;
  while (typed != '\n' && count == 1) {
    if (!::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), &typed, 1, &count, nullptr)) return;
  }
}

// Returns only when no file is at risk.
void end_run() {
  const FileAtRisk* const file = FILE_AT_RISK();
  if (file == nullptr) return;
  write_directly("\r\nERROR - Reading file \"");
  write_directly(file->name);
  write_directly("\": ");
  write_directly(file->damage);
  write_directly("\r\n\r\nPress Enter to Close\r\n");
  if (how_to_end.waits_for_enter) wait_for_enter();
  ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(how_to_end.status));
}

LONG WINAPI on_exception(EXCEPTION_POINTERS*) {
  end_run();
  return EXCEPTION_CONTINUE_SEARCH;
}

void on_abort(int) {
  end_run();
}

}  // namespace

void END_CRASHES_IN_A_LINE(const CrashEnding& ending) {
  how_to_end = ending;
  // So that a stack that is full still has room for the line.
  ULONG room = 65536;
  ::SetThreadStackGuarantee(&room);
  ::SetUnhandledExceptionFilter(on_exception);
  std::signal(SIGABRT, on_abort);
}

}  // namespace quillet
