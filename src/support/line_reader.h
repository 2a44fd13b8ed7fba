// Reads a text file line by line through one block of memory, whatever its length or the length of
// its lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "support/input_unit.h"

namespace quillet {

// The line at the start of a text: without its line end (LF or CR LF), and cut to `width`
// characters.
std::string_view LINE_AT(std::string_view text, std::size_t width);

class LineReader {
 public:
  static constexpr std::size_t usual_block_size = std::size_t{256} << 10;

  // The file must stay open. Lines are cut to `width` characters; the rest of a longer line is
  // passed over. The block holds more than `width` bytes.
  LineReader(const InputUnit& input, std::size_t width, std::size_t block = usual_block_size);

  // The next line without its line end (LF or CR LF); the last line of the file may lack one. False
  // at the end of the file. The characters stay until the next call.
  bool next(std::string_view& line);

  // All lines that the block holds, at least one, each with its line end (see LINE_AT): the last
  // line of the file is given one, and of a line longer than the block a part is missing that lies
  // beyond the width. False at the end of the file. The characters stay until the next call.
  bool next_lines(std::string_view& lines);

  // The next line is the one that begins at byte `position` of the file.
  void go_to(std::int64_t position);

 private:
  bool fetch_lines();
  std::size_t refill();

  const InputUnit& file;
  std::size_t line_width;
  std::size_t block_size;
  std::unique_ptr<char[]> block;  // block_size bytes and one for a line end at the end of the file
  std::size_t start = 0;          // of the next line in the block
  std::size_t filled = 0;
  std::size_t lines_end = 0;       // just after the last line end in the block, or at the start
  std::int64_t file_position = 0;  // just after what is in the block
};

}  // namespace quillet
