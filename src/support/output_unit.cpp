#include "support/output_unit.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <tuple>
#include <utility>

#include "support/console.h"

namespace quillet {

std::string PART_NAME(const std::string& file_name) {
  return file_name + ".part";
}

void OutputUnit::FreeDeleter::operator()(char* memory) const {
  std::free(memory);
}

OutputUnit::OutputUnit(const std::string& name, Replace replace)
    : file_name(name), open_name(replace == Replace::directly ? name : PART_NAME(name)) {
  constexpr std::size_t page = 4096;
  buffer.reset(static_cast<char*>(std::aligned_alloc(page, buffer_size)));
  if (!buffer) FAIL_ALLOCATION();
  while ((descriptor = create()) < 0) ASK_TO_TRY_AGAIN(file_name);
}

// A folder in the place of the final name is noticed now, not when all the work is done.
int OutputUnit::create() const {
  std::error_code error;
  if (std::filesystem::is_directory(file_name, error)) return -1;
  return ::open(open_name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
}

// What was written stays under its temporary name; a file without a byte is removed.
OutputUnit::~OutputUnit() {
  if (descriptor < 0) return;
  if (reserved > written) std::ignore = ::ftruncate(descriptor, written);
  ::close(descriptor);
  if (written == 0) std::remove(open_name.c_str());
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
  bool done = reserved <= written || ::ftruncate(descriptor, written) == 0;
  done = ::close(std::exchange(descriptor, -1)) == 0 && done;
  done = done && (open_name == file_name || std::rename(open_name.c_str(), file_name.c_str()) == 0);
  if (!done) FAIL_WRITING(file_name, std::strerror(errno));
}

}  // namespace quillet
