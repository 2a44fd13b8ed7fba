// A rectangle of a raster's cells, as it is drawn and written.
#pragma once

#include <cstdint>

namespace quillet {

// The cells of a raster are cut into blocks of one size, from the north-west; those at the eastern
// and southern edge may stick out of it.
struct BlockSize {
  std::int32_t rows = 1;
  std::int32_t columns = 1;

  std::int64_t cells() const { return std::int64_t{rows} * columns; }
};

// How many blocks a raster has.
struct BlockCounts {
  std::int64_t across = 1;
  std::int64_t down = 1;

  BlockCounts(std::int32_t rows, std::int32_t columns, const BlockSize& size)
      : across((columns - 1) / size.columns + 1), down((rows - 1) / size.rows + 1) {}

  std::int64_t total() const { return across * down; }
};

}  // namespace quillet
