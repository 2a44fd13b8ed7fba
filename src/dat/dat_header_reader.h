// Reads the cards of a .dat header, up to the card of the first output time or the end of the file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dat/dat_layout.h"
#include "support/input_unit.h"

namespace quillet {

struct DatHeader {
  std::int32_t node_count = 0;
  std::int32_t cell_count = 0;
  bool is_vector = false;
  std::string name;  // up to 40 characters, without trailing blanks
};

class DatHeaderReader {
 public:
  explicit DatHeaderReader(const InputUnit& input) : file(input) {}

  // Unknown cards are skipped. A header that the end of the file cuts short counts as far as it
  // was read.
  DatHeader read();

  bool node_count_stated() const { return has_node_count; }

  // True when the header ended with the card of an output time; `position` is just after it.
  bool step_follows() const { return found_step; }
  std::int64_t position() const { return block_start + static_cast<std::int64_t>(used); }

 private:
  bool take(void* item, std::size_t size);
  void take_card(DatCard card, DatHeader& header);

  const InputUnit& file;
  std::vector<char> block;
  std::int64_t block_start = 0;
  std::size_t used = 0;
  bool has_node_count = false;
  bool found_step = false;
};

}  // namespace quillet
