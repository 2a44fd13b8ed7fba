// A raster as an ESRI ASCII grid: six lines of header, then one line per row. One band.
#pragma once

#include <string>

#include "raster/raster_sink.h"
#include "support/output_unit.h"

namespace quillet {

class AsciiGridSink : public RasterSink {
 public:
  // Creates the file and writes the header.
  AsciiGridSink(const std::string& file_name, const RasterDescription& raster);

  std::int32_t rows_at_a_time() const override { return 64; }
  std::int64_t stride() const override { return columns; }
  void begin_band(const std::string&) override {}  // the format has no place for it
  void write_rows(const float* cells, std::int32_t rows) override;
  void close() override { unit.complete(); }

 private:
  OutputUnit unit;
  std::int32_t columns;
};

}  // namespace quillet
