// Reads a text file line by line through one block of memory, whatever its length or the length of
// its lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "support/input_unit.h"

namespace quillet {

class LineReader {
 public:
  static constexpr std::size_t usual_block_size = std::size_t{256} << 10;

  // The file must stay open. Lines are cut to `width` characters; the rest of a longer line is
  // passed over. The block holds more than `width` bytes.
  LineReader(const InputUnit& input, std::size_t width, std::size_t block = usual_block_size);

  // The next line without its line end (LF or CR LF); the last line of the file may lack one. False
  // at the end of the file. The characters stay until the next call, and the one after the last may
  // be looked at too: it is a line end, unless the line was cut.
  bool next(std::string_view& line);

  // The next line where it stands, when the block holds all of it, with its line end and without
  // any cut; else null.
  const char* whole_line() const { return start < lines_end ? block.get() + start : nullptr; }

  // Goes past the line that whole_line() gave. `place` is any character of it or its line end.
  void pass_line(const char* place) {
    if (*place != '\n') place = find_line_end(static_cast<std::size_t>(place - block.get()));
    start = static_cast<std::size_t>(place - block.get()) + 1;
  }

  // Back to the first line.
  void rewind();

  // Goes to the end of the file.
  void pass_all();

 private:
  const char* find_line_end(std::size_t from) const;
  std::size_t refill();
  bool next_beyond_block(std::string_view& line);
  bool take(const char* line_end, std::string_view& line);

  const InputUnit& file;
  std::size_t line_width;
  std::size_t block_size;
  std::unique_ptr<char[]> block;  // block_size bytes and one for a line end at the end of the file
  std::size_t start = 0;          // of the next line in the block
  std::size_t filled = 0;
  std::size_t lines_end = 0;       // just after the last line end in the block
  std::int64_t file_position = 0;  // just after what is in the block
};

}  // namespace quillet
