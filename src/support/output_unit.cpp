#include "support/output_unit.h"

#include <cstring>
#include <utility>

#include "support/console.h"
#include "support/system_memory.h"

namespace quillet {

void OutputUnit::Freer::operator()(char* memory) const {
  FREE_ALIGNED_MEMORY(memory);
}

OutputUnit::OutputUnit(const std::string& name, Replace replace)
    : file_name(name), is_direct(replace == Replace::directly) {
  constexpr std::size_t page = 4096;
  buffer.reset(static_cast<char*>(ALIGNED_MEMORY(page, buffer_size)));
  if (!buffer) FAIL_ALLOCATION();
  for (std::string reason = create(); !reason.empty(); reason = create()) {
    ASK_TO_TRY_AGAIN(file_name, reason);
  }
}

std::string OutputUnit::create() {
  std::string reason;
  if (is_direct) {
    file = CREATE_OUTPUT_FILE(file_name, reason);
  } else {
    reason = part.create(file_name);
    file = part.handle();
  }
  return reason;
}

// What was written stays under its temporary name; a file without a byte is removed.
OutputUnit::~OutputUnit() {
  if (file == no_file) return;
  if (reserved > written) CUT_FILE(file, written);
  if (is_direct) {
    CLOSE_SYSTEM_FILE(file);
  } else if (written == 0) {
    part.remove();
  }
}

void OutputUnit::expect_size(std::int64_t bytes) {
  if (bytes <= reserved) return;
  if (RESERVE_FILE_ROOM(file, bytes)) {
    reserved = bytes;
  } else {
    // What a full disk could give is given back: the guess may be too high.
    CUT_FILE(file, written);
  }
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
  const auto count = static_cast<std::int64_t>(size);
  std::int64_t done = 0;
  while (done < count) {
    const std::int64_t put = WRITE_SOME(file, data + done, count - done);
    if (put < 0) FAIL_WRITING(file_name, SYSTEM_REASON());
    done += put;
    written += put;
  }
}

void OutputUnit::write_over_start(std::string_view bytes) {
  flush();
  const std::int64_t length = written;
  if (!GO_TO_START_OF_FILE(file)) FAIL_WRITING(file_name, SYSTEM_REASON());
  write_out(bytes.data(), bytes.size());
  written = length;
}

void OutputUnit::complete() {
  flush();
  if (reserved > written && !CUT_FILE(file, written)) FAIL_WRITING(file_name, SYSTEM_REASON());
  const SystemFile closing = std::exchange(file, no_file);
  std::string reason;
  if (!is_direct) {
    reason = part.complete();
  } else if (!CLOSE_SYSTEM_FILE(closing)) {
    reason = SYSTEM_REASON();
  }
  if (!reason.empty()) FAIL_WRITING(file_name, reason);
}

}  // namespace quillet
