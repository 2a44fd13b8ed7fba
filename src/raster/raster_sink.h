// What a raster file is to the operation that fills it, whatever its format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "raster/raster_grid.h"

namespace quillet {

struct RasterDescription {
  RasterGrid grid;
  std::size_t bands = 1;
  std::optional<std::int32_t> coordinate_system;  // EPSG code of a projected one
};

// Bands are written one after the other, each from its first row to its last. Whatever cannot be
// written ends the run; the file has its final name only after close().
class RasterSink {
 public:
  virtual ~RasterSink() = default;

  // Rows that are written at a time (fewer at the end of a band), and how far apart their first
  // cells must stand: there is room for `stride` cells in each of `rows_at_a_time` rows.
  virtual std::int32_t rows_at_a_time() const = 0;
  virtual std::int64_t stride() const = 0;

  // Before the first rows of each band: what the band is called.
  virtual void begin_band(const std::string& name) = 0;
  virtual void write_rows(const float* cells, std::int32_t rows) = 0;

  virtual void close() = 0;
};

}  // namespace quillet
