#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <initializer_list>

#include "support/system_process.h"

namespace quillet {
namespace {

// A new descriptor is the lowest free one, so in this order each gets its own place.
void open_standard_handles() {
  for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(handle, F_GETFD) < 0) ::open("/dev/null", O_RDWR);
  }
}

}  // namespace

void PREPARE_PROCESS() {
  open_standard_handles();
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  // Nothing is read ahead of what a wait for input looks at.
  std::setvbuf(stdin, nullptr, _IONBF, 0);
}

}  // namespace quillet
