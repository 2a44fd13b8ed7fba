#include "mesh/card_counts.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>

#include "support/console.h"
#include "support/kernel.h"

namespace quillet {
namespace {

constexpr std::size_t block_size = std::size_t{256} << 10;

// A card shows in the line end before it and up to three characters.
constexpr std::size_t look_ahead = 3;

// Positions per call: an 8-bit counter cannot overflow, which keeps the loop to bytes.
constexpr std::size_t positions_per_piece = 224;

struct PieceCounts {
  std::uint8_t nodes = 0;
  std::uint8_t triangles = 0;
  std::uint8_t quads4 = 0;
  std::uint8_t quads9 = 0;
};

// 0 where the characters are the same. With conditions in place of these bits the loop below would
// not vectorise.
inline std::uint8_t difference(char a, char b) {
  return static_cast<std::uint8_t>(a ^ b);
}

inline void count_where_zero(std::uint8_t& counter, int differences) {
  counter = static_cast<std::uint8_t>(counter + (static_cast<std::uint8_t>(differences) == 0));
}

// Counts the cards after the line ends at the positions 0..count-1 (at most positions_per_piece);
// look_ahead characters follow them.
KERNEL_LOOP void count_piece(const char* text, std::size_t count, PieceCounts& counts) {
  PieceCounts found;
  for (std::size_t i = 0; i < count; ++i) {
    const char second = text[i + 2];
    const char third = text[i + 3];
    const int no_line_end = difference(text[i], '\n');
    const int no_element = no_line_end | difference(text[i + 1], 'E');
    const int no_quad = no_element | difference(third, 'Q');
    count_where_zero(found.nodes,
                     no_line_end | difference(text[i + 1], 'N') | difference(second, 'D'));
    count_where_zero(found.triangles,
                     no_element | difference(second, '3') | difference(third, 'T'));
    count_where_zero(found.quads4, no_quad | difference(second, '4'));
    count_where_zero(found.quads9, no_quad | difference(second, '9'));
  }
  counts = found;
}

void count_block(const char* text, std::size_t count, CARD_COUNTS_TYPE& counts) {
  for (std::size_t first = 0; first < count; first += positions_per_piece) {
    PieceCounts found;
    Kernel<count_piece>::run(text + first, std::min(positions_per_piece, count - first), found);
    counts.nodes += found.nodes;
    counts.triangles += found.triangles;
    counts.quads4 += found.quads4;
    counts.quads9 += found.quads9;
  }
}

}  // namespace

CARD_COUNTS_TYPE COUNT_CARDS(const InputUnit& unit) {
  const std::unique_ptr<char[]> block(new (std::nothrow) char[block_size + look_ahead]);
  if (!block) FAIL_ALLOCATION();

  CARD_COUNTS_TYPE counts;
  std::int64_t position = 0;
  std::size_t kept = 0;  // positions at the front that still lack what follows them
  for (;;) {
    const auto got = unit.read_at(position, block.get() + kept, block_size - look_ahead);
    if (got == 0) break;
    position += got;
    const std::size_t filled = kept + static_cast<std::size_t>(got);
    const std::size_t counted = filled > look_ahead ? filled - look_ahead : 0;
    count_block(block.get(), counted, counts);
    kept = filled - counted;
    std::memmove(block.get(), block.get() + counted, kept);
  }
  std::memset(block.get() + kept, 0, look_ahead);
  count_block(block.get(), kept, counts);
  return counts;
}

}  // namespace quillet
