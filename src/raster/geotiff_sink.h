// A raster as a GeoTIFF: 32-bit reals, planes apart, in tiles, deflated after the floating-point
// predictor. Equal rasters are equal files: no date stands in them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "raster/raster_sink.h"
#include "raster/tiff_stream.h"
#include "support/output_unit.h"

namespace quillet {

class GeotiffSink : public RasterSink {
 public:
  // Creates the file. Ends the run when it would have more tiles than the format can number.
  GeotiffSink(const std::string& file_name, const RasterDescription& raster);

  BlockSize block_size() const override;
  std::unique_ptr<BlockPacker> make_packer() const override;
  void begin_band(const std::string& name) override { band_names.push_back(name); }
  void write(std::string_view bytes) override;
  void close() override;

 private:
  OutputUnit unit;
  std::uint32_t next_tile = 0;
  std::vector<std::string> band_names;
  TiffStream stream;
};

}  // namespace quillet
