#include "support/standard_handles.h"

#include <fcntl.h>
#include <unistd.h>

#include <initializer_list>

namespace quillet {

// A new descriptor is the lowest free one, so in this order each gets its own place.
void OPEN_STANDARD_HANDLES() {
  for (const int handle : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(handle, F_GETFD) < 0) ::open("/dev/null", O_RDWR);
  }
}

}  // namespace quillet
