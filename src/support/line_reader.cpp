#include "support/line_reader.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "support/console.h"

namespace quillet {

std::string_view LINE_AT(std::string_view text, std::size_t width) {
  std::string_view line = text.substr(0, text.find('\n'));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line.substr(0, width);
}

namespace {

// No longer than the file, but with room for a line that counts and what follows it.
std::size_t size_of_block(const InputUnit& file, std::size_t width, std::size_t wanted) {
  const auto whole = static_cast<std::size_t>(std::max<std::int64_t>(file.size(), 0));
  return std::min(wanted, std::max(whole, width) + width + 1);
}

}  // namespace

LineReader::LineReader(const InputUnit& input, std::size_t width, std::size_t block_bytes)
    : file(input), line_width(width), block_size(size_of_block(input, width, block_bytes)) {
  // Not set to anything: most small files touch only a part of it.
  block.reset(new (std::nothrow) char[block_size + 1]);
  if (!block) FAIL_ALLOCATION();
}

bool LineReader::next(std::string_view& line) {
  if (start == lines_end && !fetch_lines()) return false;
  const std::string_view lines(block.get() + start, lines_end - start);
  line = LINE_AT(lines, line_width);
  start += lines.find('\n') + 1;
  return true;
}

bool LineReader::next_lines(std::string_view& lines) {
  if (start == lines_end && !fetch_lines()) return false;
  lines = {block.get() + start, lines_end - start};
  start = lines_end;
  return true;
}

void LineReader::go_to(std::int64_t position) {
  start = 0;
  filled = 0;
  lines_end = 0;
  file_position = position;
}

// Goes on to the lines that follow those in the block; false at the end of the file. Of a line
// longer than the block only the part that counts is kept.
bool LineReader::fetch_lines() {
  do {
    const std::size_t rest = filled - start;
    filled = rest < block_size ? rest : line_width;
    std::memmove(block.get(), block.get() + start, filled);
    start = 0;
    lines_end = 0;
    if (refill() == 0) {
      if (filled > 0) block[filled++] = '\n';
      lines_end = filled;
    }
  } while (lines_end == 0 && filled > 0);
  return lines_end > 0;
}

// Adds to the block what there is room for. Returns how many bytes that were; 0 only at the end of
// the file.
std::size_t LineReader::refill() {
  END_IF_INTERRUPTED();
  const auto got = file.read_at(file_position, block.get() + filled,
                                static_cast<std::int64_t>(block_size - filled));
  file_position += got;
  filled += static_cast<std::size_t>(got);
  lines_end = std::string_view(block.get(), filled).rfind('\n') + 1;  // 0 without any
  return static_cast<std::size_t>(got);
}

}  // namespace quillet
