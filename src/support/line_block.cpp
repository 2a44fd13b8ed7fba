#include "support/line_block.h"

#include <algorithm>

namespace quillet {

// The byte before tells whether a line begins with the first one. Of the last line the end is most
// often found in what is read at once.
bool LineBlock::read(const InputUnit& file, std::int64_t begin, std::int64_t end) {
  constexpr std::size_t usual_line = 512;
  constexpr std::size_t longest_line = std::size_t{512} << 10;
  position = begin > 0 ? begin - 1 : 0;
  const auto stretch = static_cast<std::size_t>(end - position);
  for (std::size_t beyond = usual_line; beyond <= longest_line; beyond *= 4) {
    if (!read_bytes(file, stretch + beyond)) return false;
    const bool is_whole = filled < stretch + beyond;
    if (find_lines(begin > 0, stretch, is_whole)) return true;
    if (is_whole) return false;
  }
  return false;
}

// As far into its page of memory as the bytes lie in their page of the file: some processors take
// four times as long to copy to a place up to 63 bytes further in its page than the source.
bool LineBlock::read_bytes(const InputUnit& file, std::size_t count) {
  constexpr std::size_t page = 4096;
  if (count + page > room) {
    // Not set to anything: the file may end before.
    memory.reset(new char[count + page]);
    room = count + page;
  }
  const auto address = reinterpret_cast<std::uintptr_t>(memory.get());
  bytes = memory.get() + (static_cast<std::uintptr_t>(position) - address) % page;
  const auto got = file.try_to_read_at(position, bytes, static_cast<std::int64_t>(count));
  if (got < 0) return false;
  filled = static_cast<std::size_t>(got);
  return true;
}

// `is_whole`: the bytes reach to the end of the file. A last line without a line end is left to who
// reads in order.
bool LineBlock::find_lines(bool has_byte_before, std::size_t stretch, bool is_whole) {
  const std::string_view text(bytes, filled);
  lines_begin = has_byte_before ? text.find('\n') + 1 : 0;
  if (has_byte_before && lines_begin == 0) return false;
  lines_end = lines_begin;
  if (lines_begin >= stretch) return true;
  std::size_t last = text.find('\n', stretch - 1);
  if (last == std::string_view::npos && is_whole) last = text.rfind('\n');
  if (last == std::string_view::npos) return false;
  lines_end = std::max(lines_begin, last + 1);
  return true;
}

}  // namespace quillet
