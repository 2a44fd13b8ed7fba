#include "support/line_reader.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "support/console.h"

namespace quillet {

LineReader::LineReader(const InputUnit& input, std::size_t width, std::size_t block_bytes)
    : file(input), line_width(width), block_size(block_bytes) {
  // Not set to anything: most small files touch only a part of it.
  block.reset(new (std::nothrow) char[block_size + 1]);
  if (!block) FAIL_ALLOCATION();
}

bool LineReader::next(std::string_view& line) {
  const char* const line_end = find_line_end(start);
  return line_end != nullptr ? take(line_end, line) : next_beyond_block(line);
}

void LineReader::rewind() {
  start = 0;
  filled = 0;
  lines_end = 0;
  file_position = 0;
}

void LineReader::pass_all() {
  rewind();
  file_position = file.size();
}

const char* LineReader::find_line_end(std::size_t from) const {
  return static_cast<const char*>(std::memchr(block.get() + from, '\n', filled - from));
}

// Adds to the block what there is room for. Returns how many bytes that were; 0 only at the end of
// the file.
std::size_t LineReader::refill() {
  const auto got = file.read_at(file_position, block.get() + filled,
                                static_cast<std::int64_t>(block_size - filled));
  file_position += got;
  filled += static_cast<std::size_t>(got);
  lines_end = std::string_view(block.get(), filled).rfind('\n') + 1;  // 0 without any
  return static_cast<std::size_t>(got);
}

// The next line begins in the block and does not end in it. Of a line longer than the block only
// the part that will be shown is kept.
bool LineReader::next_beyond_block(std::string_view& line) {
  for (;;) {
    const std::size_t kept = std::min(filled - start, line_width);
    std::memmove(block.get(), block.get() + start, kept);
    start = 0;
    filled = kept;
    if (refill() == 0) break;
    const char* const line_end = find_line_end(kept);
    if (line_end != nullptr) return take(line_end, line);
  }
  if (filled == 0) return false;
  block[filled] = '\n';
  return take(block.get() + filled++, line);
}

bool LineReader::take(const char* line_end, std::string_view& line) {
  const char* const first = block.get() + start;
  start = static_cast<std::size_t>(line_end - block.get()) + 1;
  if (line_end > first && line_end[-1] == '\r') --line_end;
  line = {first, std::min(static_cast<std::size_t>(line_end - first), line_width)};
  return true;
}

}  // namespace quillet
