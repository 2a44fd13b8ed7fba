#include "raster/ascii_grid_sink.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "support/large_array.h"

namespace quillet {
namespace {

constexpr std::string_view no_data_text = "-9999";
constexpr std::size_t longest_value = 16;  // "-1.17549435e-38" and a blank

// The shortest text that reads back to the value.
char* put_value(float value, char* at) {
  if (value == raster_no_data) return no_data_text.copy(at, no_data_text.size()) + at;
  return std::to_chars(at, at + longest_value, value).ptr;
}

// About 64 KiB of text, or one row.
BlockSize rows_of_block(std::int32_t columns) {
  constexpr std::int32_t cells = 1 << 14;
  return {std::max(1, cells / columns), columns};
}

class RowPacker : public BlockPacker {
 public:
  RowPacker(const BlockSize& block_size, std::int32_t raster_rows)
      : size(block_size), rows(raster_rows) {
    text.resize(static_cast<std::size_t>(size.cells()) * longest_value);
  }

  void pack(std::int64_t block, const float* cells) override {
    put_rows(block, [&] { return *cells++; });
  }

  void pack_no_data(std::int64_t block) override {
    put_rows(block, [] { return raster_no_data; });
  }

  std::string_view bytes() const override { return {text.data(), used}; }

 private:
  template <typename NextCell>
  void put_rows(std::int64_t block, const NextCell& next_cell) {
    const auto first_row = static_cast<std::int32_t>(block * size.rows);
    char* at = text.data();
    for (std::int32_t row = 0; row < std::min(size.rows, rows - first_row); ++row) {
      for (std::int32_t column = 0; column < size.columns; ++column) {
        at = put_value(next_cell(), at);
        *at++ = ' ';
      }
      at[-1] = '\n';
    }
    used = static_cast<std::size_t>(at - text.data());
  }

  BlockSize size;
  std::int32_t rows;
  LargeArray<char> text;
  std::size_t used = 0;
};

}  // namespace

// The no-data value stands with a decimal: some readers tell by it that the values are reals, and
// would cut their decimals off when the first rows hold none.
AsciiGridSink::AsciiGridSink(const std::string& file_name, const RasterDescription& raster)
    : unit(file_name), rows(raster.grid.rows), size(rows_of_block(raster.grid.columns)) {
  const RasterGrid& grid = raster.grid;
  unit.write(
      fmt::format("ncols {}\nnrows {}\nxllcorner {}\nyllcorner {}\ncellsize {}\n"
                  "NODATA_value {}.0\n",
                  grid.columns, grid.rows, grid.left, grid.bottom(), grid.cell_size, no_data_text));
}

std::unique_ptr<BlockPacker> AsciiGridSink::make_packer() const {
  return std::make_unique<RowPacker>(size, rows);
}

}  // namespace quillet
