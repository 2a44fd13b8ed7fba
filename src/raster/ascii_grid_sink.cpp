#include "raster/ascii_grid_sink.h"

#include <fmt/format.h>

#include <charconv>
#include <string_view>

namespace quillet {
namespace {

constexpr std::string_view no_data_text = "-9999";
constexpr std::size_t longest_value = 16;  // "-1.17549435e-38" and a blank

// The shortest text that reads back to the value.
char* put_value(float value, char* at) {
  if (value == raster_no_data) return no_data_text.copy(at, no_data_text.size()) + at;
  return std::to_chars(at, at + longest_value, value).ptr;
}

}  // namespace

// The no-data value stands with a decimal: some readers tell by it that the values are reals, and
// would cut their decimals off when the first rows hold none.
AsciiGridSink::AsciiGridSink(const std::string& file_name, const RasterDescription& raster)
    : unit(file_name), columns(raster.grid.columns) {
  const RasterGrid& grid = raster.grid;
  unit.write(
      fmt::format("ncols {}\nnrows {}\nxllcorner {}\nyllcorner {}\ncellsize {}\n"
                  "NODATA_value {}.0\n",
                  grid.columns, grid.rows, grid.left, grid.bottom(), grid.cell_size, no_data_text));
}

void AsciiGridSink::write_rows(const float* cells, std::int32_t rows) {
  for (std::int32_t row = 0; row < rows; ++row) {
    for (std::int32_t column = 0; column < columns; ++column) {
      char* const start = unit.room(longest_value);
      char* const end = put_value(cells[row * stride() + column], start);
      *end = column + 1 < columns ? ' ' : '\n';
      unit.keep(static_cast<std::size_t>(end - start) + 1);
    }
  }
}

}  // namespace quillet
