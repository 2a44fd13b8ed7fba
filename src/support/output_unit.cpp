#include "support/output_unit.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include "support/console.h"
#include "support/interrupt.h"
#include "support/system_memory.h"
#include "support/work_crew.h"

namespace quillet {

void OutputUnit::Freer::operator()(char* memory) const {
  FREE_ALIGNED_MEMORY(memory);
}

// Of files that are complete, for those that follow: getting the memory anew for each of hundreds
// of files takes up to a tenth of an export. As many as may be in use at once.
struct OutputUnit::Spares {
  std::mutex mutex;
  std::vector<Buffer> buffers;
};

OutputUnit::Spares& OutputUnit::spare_buffers() {
  static Spares spares;
  return spares;
}

OutputUnit::Buffer OutputUnit::take_buffer() {
  constexpr std::size_t page = 4096;
  Spares& spares = spare_buffers();
  const std::lock_guard lock(spares.mutex);
  if (spares.buffers.empty()) {
    return Buffer(static_cast<char*>(ALIGNED_MEMORY(page, buffer_size)));
  }
  Buffer buffer = std::move(spares.buffers.back());
  spares.buffers.pop_back();
  return buffer;
}

void OutputUnit::give_back(Buffer buffer) {
  Spares& spares = spare_buffers();
  const std::lock_guard lock(spares.mutex);
  if (std::ssize(spares.buffers) <= WORK_CREW().threads()) {
    spares.buffers.push_back(std::move(buffer));
  }
}

OutputUnit::OutputUnit(const std::string& name, Replace replace)
    : file_name(name), is_direct(replace == Replace::directly) {
  buffer = take_buffer();
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

void OutputUnit::write_items(std::int64_t count, int size, const FillItems& fill) {
  // Fewer bytes are as soon filled in by one.
  constexpr std::int64_t fewest_shared = std::int64_t{2} << 20;
  if (count * size >= fewest_shared && WORK_CREW().has_helpers()) {
    write_shared_items(count, size, fill);
    return;
  }
  const std::int64_t in_piece = static_cast<std::int64_t>(piece_size) / size;
  for (std::int64_t first = 0; first < count; first += in_piece) {
    const std::int64_t end = std::min(first + in_piece, count);
    const auto bytes = static_cast<std::size_t>((end - first) * size);
    fill(first, end, room(bytes));
    keep(bytes);
  }
}

// While one half of the buffer is written, the crew fills the other.
void OutputUnit::write_shared_items(std::int64_t count, int size, const FillItems& fill) {
  struct Half {
    char* start = nullptr;
    std::size_t bytes = 0;
    std::array<CrewJob, buffer_size / piece_size / 2> pieces{};
  };
  const std::int64_t in_piece = static_cast<std::int64_t>(piece_size) / size;
  std::int64_t begun = 0;
  const auto begin = [&](Half& half) {
    half.bytes = 0;
    for (CrewJob& piece : half.pieces) {
      const std::int64_t first = begun;
      begun = std::min(begun + in_piece, count);
      if (begun == first) return;
      char* const at = half.start + half.bytes;
      piece.start_last([&fill, first, end = begun, at] { fill(first, end, at); });
      half.bytes += static_cast<std::size_t>((begun - first) * size);
    }
  };
  flush();
  std::array<Half, 2> halves;
  for (std::size_t i = 0; i < halves.size(); ++i) {
    halves[i].start = buffer.get() + i * (buffer_size / 2);
    begin(halves[i]);
  }
  for (std::size_t next = 0; halves[next].bytes > 0; next = 1 - next) {
    Half& half = halves[next];
    for (CrewJob& piece : half.pieces) piece.finish();
    write_out(half.start, half.bytes);
    begin(half);
  }
}

char* OutputUnit::room(std::size_t size) {
  if (buffered + size > buffer_size) flush();
  return buffer.get() + buffered;
}

void OutputUnit::flush() {
  write_out(buffer.get(), buffered);
  buffered = 0;
}

// No more than the buffer's size at once: what one call writes the system keeps in stretches of
// memory up to 2 MiB long, and those are slow to come by where memory has been in use for a while.
void OutputUnit::write_out(const char* data, std::size_t size) {
  if (!keeps_failure) {
    END_IF_INTERRUPTED();
  } else if (INTERRUPTED()) {
    take_failure("Interrupted");
  }
  const auto count = static_cast<std::int64_t>(size);
  std::int64_t done = 0;
  while (done < count && failure.empty()) {
    const auto size_of_call = std::min<std::int64_t>(count - done, buffer_size);
    const std::int64_t put = WRITE_SOME(file, data + done, size_of_call);
    if (put < 0) {
      take_failure(SYSTEM_REASON());
    } else {
      done += put;
      written += put;
    }
  }
}

void OutputUnit::write_over_start(std::string_view bytes) {
  flush();
  const std::int64_t length = written;
  if (!GO_TO_START_OF_FILE(file)) FAIL_WRITING(file_name, SYSTEM_REASON());
  write_out(bytes.data(), bytes.size());
  written = length;
}

void OutputUnit::take_failure(const std::string& reason) {
  if (!keeps_failure) FAIL_WRITING(file_name, reason);
  failure = reason;
}

void OutputUnit::end_writing() {
  flush();
  if (has_failed()) return;
  const bool is_cut = reserved <= written || CUT_FILE(file, written);
  const bool is_ended = is_cut && (!is_direct || CLOSE_SYSTEM_FILE(std::exchange(file, no_file)));
  if (!is_ended) take_failure(SYSTEM_REASON());
  give_back(std::move(buffer));
}

void OutputUnit::complete() {
  if (buffer) end_writing();
  if (has_failed()) {
    END_IF_INTERRUPTED();
    FAIL_WRITING(file_name, failure);
  }
  if (is_direct) return;
  file = no_file;
  const std::string reason = part.complete();
  if (!reason.empty()) FAIL_WRITING(file_name, reason);
}

}  // namespace quillet
