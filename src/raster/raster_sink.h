// What a raster file is to the operation that fills it, whatever its format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "raster/cell_block.h"
#include "raster/raster_grid.h"

namespace quillet {

struct RasterDescription {
  RasterGrid grid;
  std::size_t bands = 1;
  std::optional<std::int32_t> coordinate_system;  // EPSG code of a projected one
};

// Turns the cells of a block into the bytes that stand in the file. One for each block that is
// under way at a time; a helper thread may use it.
class BlockPacker {
 public:
  virtual ~BlockPacker() = default;

  // The cells of a whole block, one row behind the other, those outside of the raster too. Needs no
  // memory and cannot fail.
  virtual void pack(std::int64_t block, const float* cells) = 0;

  // A block without a value.
  virtual void pack_no_data(std::int64_t block) = 0;

  // Of the block packed last.
  virtual std::string_view bytes() const = 0;
};

// Bands are written one after the other, each block by block, row by row from the north-west.
// Whatever cannot be written ends the run; the file has its final name only after close().
class RasterSink {
 public:
  virtual ~RasterSink() = default;

  virtual BlockSize block_size() const = 0;

  // Ends the run when memory does not suffice.
  virtual std::unique_ptr<BlockPacker> make_packer() const = 0;

  // Before the first block of each band: what the band is called.
  virtual void begin_band(const std::string& name) = 0;
  virtual void write(std::string_view bytes) = 0;

  virtual void close() = 0;
};

}  // namespace quillet
