#include "support/output_unit.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <tuple>
#include <utility>

#include "support/console.h"

namespace quillet {

void OutputUnit::FreeDeleter::operator()(char* memory) const {
  std::free(memory);
}

OutputUnit::OutputUnit(const std::string& name, Replace replace)
    : file_name(name), is_direct(replace == Replace::directly) {
  constexpr std::size_t page = 4096;
  buffer.reset(static_cast<char*>(std::aligned_alloc(page, buffer_size)));
  if (!buffer) FAIL_ALLOCATION();
  for (std::string reason = create(); !reason.empty(); reason = create()) {
    ASK_TO_TRY_AGAIN(file_name, reason);
  }
}

std::string OutputUnit::create() {
  if (!is_direct) {
    std::string reason = part.create(file_name);
    descriptor = part.handle();
    return reason;
  }
  descriptor = ::open(file_name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  return descriptor < 0 ? std::strerror(errno) : "";
}

// What was written stays under its temporary name; a file without a byte is removed.
OutputUnit::~OutputUnit() {
  if (descriptor < 0) return;
  if (reserved > written) std::ignore = ::ftruncate(descriptor, written);
  if (is_direct) {
    ::close(descriptor);
  } else if (written == 0) {
    part.remove();
  }
}

void OutputUnit::expect_size(std::int64_t bytes) {
#ifdef __linux__
  // The plain system call: the library's fallback would write every block.
  if (bytes <= reserved) return;
  if (::fallocate(descriptor, 0, 0, bytes) == 0) {
    reserved = bytes;
  } else {
    // What a full disk could give is given back: the guess may be too high.
    std::ignore = ::ftruncate(descriptor, written);
  }
#endif
}

void OutputUnit::write(const void* data, std::size_t size) {
  if (size >= buffer_size) {
    flush();
    write_out(static_cast<const char*>(data), size);
    return;
  }
  if (size == 0) return;  // the data of nothing may be nowhere
  std::memcpy(room(size), data, size);
  keep(size);
}

char* OutputUnit::room(std::size_t size) {
  if (buffered + size > buffer_size) flush();
  return buffer.get() + buffered;
}

void OutputUnit::flush() {
  write_out(buffer.get(), buffered);
  buffered = 0;
}

void OutputUnit::write_out(const char* data, std::size_t size) {
  END_IF_INTERRUPTED();
  std::size_t done = 0;
  while (done < size) {
    const auto put = ::write(descriptor, data + done, size - done);
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) FAIL_WRITING(file_name, std::strerror(errno));
    done += static_cast<std::size_t>(put);
    written += put;
  }
}

void OutputUnit::complete() {
  flush();
  if (reserved > written && ::ftruncate(descriptor, written) != 0) {
    FAIL_WRITING(file_name, std::strerror(errno));
  }
  const int closing = std::exchange(descriptor, -1);
  std::string reason;
  if (!is_direct) {
    reason = part.complete();
  } else if (::close(closing) != 0) {
    reason = std::strerror(errno);
  }
  if (!reason.empty()) FAIL_WRITING(file_name, reason);
}

}  // namespace quillet
