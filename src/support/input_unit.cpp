#include "support/input_unit.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "support/console.h"

namespace quillet {
namespace {

// Only regular files can be read at any position. -1 with errno set otherwise.
int open_regular_file(const std::string& file_name, std::int64_t& size) {
  const int descriptor = ::open(file_name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return -1;
  struct stat status {};
  if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    size = status.st_size;
    return descriptor;
  }
  ::close(descriptor);
  errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
  return -1;
}

std::string reason_not_opened() {
  return errno == EINVAL ? "Not a regular file" : std::strerror(errno);
}

}  // namespace

InputUnit::InputUnit(const std::string& name) : file_name(name) {
  while ((descriptor = open_regular_file(file_name, file_size)) < 0) {
    ASK_TO_TRY_AGAIN(file_name, reason_not_opened());
  }
}

InputUnit::InputUnit(InputUnit&& other) noexcept
    : file_name(std::move(other.file_name)),
      descriptor(std::exchange(other.descriptor, -1)),
      file_size(other.file_size) {}

InputUnit& InputUnit::operator=(InputUnit&& other) noexcept {
  std::swap(file_name, other.file_name);
  std::swap(descriptor, other.descriptor);
  std::swap(file_size, other.file_size);
  return *this;
}

InputUnit::~InputUnit() {
  close();
}

std::int64_t InputUnit::read_at(std::int64_t position, void* destination,
                                std::int64_t count) const {
  std::int64_t done = 0;
  while (done < count) {
    const auto got = ::pread(descriptor, static_cast<char*>(destination) + done,
                             static_cast<std::size_t>(count - done), position + done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) FAIL_READING(file_name, std::strerror(errno));
    if (got == 0) break;
    done += got;
  }
  return done;
}

void InputUnit::close() {
  if (descriptor >= 0) ::close(descriptor);
  descriptor = -1;
}

}  // namespace quillet
