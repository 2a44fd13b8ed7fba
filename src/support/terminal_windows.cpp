#include <windows.h>

#include "support/terminal.h"

namespace quillet {
namespace {

bool about_console(CONSOLE_SCREEN_BUFFER_INFO& about) {
  return ::GetConsoleScreenBufferInfo(::GetStdHandle(STD_ERROR_HANDLE), &about) != 0;
}

}  // namespace

bool STANDARD_ERROR_IS_TERMINAL() {
  CONSOLE_SCREEN_BUFFER_INFO about{};
  return about_console(about);
}

std::size_t TERMINAL_WIDTH() {
  constexpr std::size_t usual_width = 80;
  CONSOLE_SCREEN_BUFFER_INFO about{};
  return about_console(about) ? static_cast<std::size_t>(about.dwSize.X) : usual_width;
}

}  // namespace quillet
