// Keeps others from a file: hold_open FILE opens it so that no other program may open it,
// hold_open FILE lock as another run does that writes it. Says so and goes on until standard input
// ends.
#include <windows.h>

#include <cstdio>

int main(int count, char** arguments) {
  const bool is_run = count > 2;
  const DWORD shared = is_run ? FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE : 0;
  const DWORD access = is_run ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
  HANDLE file = INVALID_HANDLE_VALUE;
  // A program that has just ended may still hold its files for a moment.
  for (int tries = 0; file == INVALID_HANDLE_VALUE && tries < 100; ++tries) {
    if (tries > 0) ::Sleep(100);
    file = ::CreateFileA(arguments[1], access, shared, nullptr,
                         is_run ? OPEN_ALWAYS : OPEN_EXISTING, 0, nullptr);
  }
  if (file == INVALID_HANDLE_VALUE) return 1;
  OVERLAPPED where{};
  where.OffsetHigh = 0x40000000;
  if (is_run && !::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &where)) return 1;
  std::puts("held");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  ::CloseHandle(file);
}
