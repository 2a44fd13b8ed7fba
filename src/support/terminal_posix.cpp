#include <sys/ioctl.h>
#include <unistd.h>

#include "support/terminal.h"

namespace quillet {

bool STANDARD_ERROR_IS_TERMINAL() {
  return ::isatty(STDERR_FILENO) == 1;
}

std::size_t TERMINAL_WIDTH() {
  constexpr std::size_t usual_width = 80;
  winsize size{};
  const bool tells = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return tells ? size.ws_col : usual_width;
}

}  // namespace quillet
