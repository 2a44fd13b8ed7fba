// The lines that begin in a stretch of a text file, read without the lines before them: so that
// several threads can read one file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "support/input_unit.h"

namespace quillet {

class LineBlock {
 public:
  // Reads the lines that begin from byte `begin` to before `end` of the file and have a line end.
  // Tells nothing, for a helper: false when the system cannot read, and where only reading in order
  // can tell what is there (no line begins here, or the last one goes on for half a MiB). Throws
  // std::bad_alloc.
  bool read(const InputUnit& file, std::int64_t begin, std::int64_t end);

  // Where in the file the lines begin, and the one that follows them.
  std::int64_t begin() const { return position + static_cast<std::int64_t>(lines_begin); }
  std::int64_t end() const { return position + static_cast<std::int64_t>(lines_end); }

  // Each with its line end (see LINE_AT). They stay until the next call.
  std::string_view lines() const { return {bytes + lines_begin, lines_end - lines_begin}; }

 private:
  bool read_bytes(const InputUnit& file, std::size_t count);
  bool find_lines(bool has_byte_before, std::size_t stretch, bool is_whole);

  std::unique_ptr<char[]> memory;
  std::size_t room = 0;
  char* bytes = nullptr;
  std::size_t filled = 0;
  std::int64_t position = 0;  // of the first byte
  std::size_t lines_begin = 0;
  std::size_t lines_end = 0;
};

}  // namespace quillet
