// A raster as an ESRI ASCII grid: six lines of header, then one line per row. One band.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "raster/raster_sink.h"
#include "support/output_unit.h"

namespace quillet {

class AsciiGridSink : public RasterSink {
 public:
  // Creates the file and writes the header.
  AsciiGridSink(const std::string& file_name, const RasterDescription& raster);

  BlockSize block_size() const override { return size; }
  std::unique_ptr<BlockPacker> make_packer() const override;
  void begin_band(const std::string&) override {}  // the format has no place for it
  void write(std::string_view bytes) override { unit.write(bytes); }
  void close() override { unit.complete(); }

 private:
  OutputUnit unit;
  std::int32_t rows;  // of the raster
  BlockSize size;     // whole rows
};

}  // namespace quillet
