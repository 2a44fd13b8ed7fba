#include "dat/dat_header_reader.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

// A header is about a hundred bytes; a file that is none is searched to its end in blocks that are
// no longer than the file.
constexpr std::int64_t smallest_block = 64;
constexpr std::int64_t block_size = 64 * 1024;

}  // namespace

DatHeader DatHeaderReader::read() {
  DatHeader header;
  std::int32_t card = 0;
  while (!found_step && take(&card, sizeof card)) take_card(static_cast<DatCard>(card), header);
  return header;
}

// The next bytes of the file; false when it ends before, and then the item stays as it was.
bool DatHeaderReader::take(void* item, std::size_t size) {
  if (used + size > block.size()) {
    END_IF_INTERRUPTED();
    block_start += static_cast<std::int64_t>(used);
    used = 0;
    const std::int64_t wanted = std::clamp(file.size() - block_start, smallest_block, block_size);
    block.resize(static_cast<std::size_t>(wanted));
    const auto found = file.read_at(block_start, block.data(), wanted);
    block.resize(static_cast<std::size_t>(found));
    // What is left of a cut item is no card.
    if (size > block.size()) used = block.size();
  }
  if (used + size > block.size()) return false;
  std::memcpy(item, block.data() + used, size);
  used += size;
  return true;
}

void DatHeaderReader::take_card(DatCard card, DatHeader& header) {
  std::array<char, dat_name_length> name{};
  std::int32_t unused = 0;
  switch (card) {
    case DatCard::object_type:
    case DatCard::real_size:
    case DatCard::status_size:
    case DatCard::vector_type:
    case DatCard::object_id:
      take(&unused, sizeof unused);
      break;
    case DatCard::scalar_dataset:
      header.is_vector = false;
      break;
    case DatCard::vector_dataset:
      header.is_vector = true;
      break;
    case DatCard::node_count:
      if (take(&header.node_count, sizeof header.node_count)) has_node_count = true;
      break;
    case DatCard::cell_count:
      take(&header.cell_count, sizeof header.cell_count);
      break;
    case DatCard::name:
      if (take(name.data(), name.size())) header.name = TRIMF({name.data(), name.size()});
      break;
    case DatCard::output_time:
      found_step = true;
      break;
    case DatCard::end:
    default:
      break;
  }
}

}  // namespace quillet
