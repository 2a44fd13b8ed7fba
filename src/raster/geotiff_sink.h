// A raster as a GeoTIFF: 32-bit reals, planes apart, in tiles, deflated after the floating-point
// predictor. Equal rasters are equal files: no date stands in them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "raster/raster_sink.h"
#include "raster/tiff_stream.h"
#include "raster/tile_packer.h"
#include "support/output_unit.h"

namespace quillet {

class GeotiffSink : public RasterSink {
 public:
  // Creates the file. Ends the run when it would have more tiles than the format can number.
  GeotiffSink(const std::string& file_name, const RasterDescription& raster);

  std::int32_t rows_at_a_time() const override { return tile_side; }
  std::int64_t stride() const override { return std::int64_t{tiles_across} * tile_side; }
  void begin_band(const std::string& name) override { band_names.push_back(name); }
  void write_rows(const float* cells, std::int32_t rows) override;
  void close() override;

 private:
  OutputUnit unit;
  std::int32_t tiles_across;
  std::uint32_t next_tile = 0;
  std::vector<std::string> band_names;
  TiffStream stream;
  TilePacker packer;
};

}  // namespace quillet
