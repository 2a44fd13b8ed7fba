// Holds a file open so that no other program may open it: hold_open FILE. Says so and goes on until
// standard input ends.
#include <windows.h>

#include <cstdio>

int main(int, char** arguments) {
  const HANDLE file =
      ::CreateFileA(arguments[1], GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 1;
  std::puts("held");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  ::CloseHandle(file);
}
