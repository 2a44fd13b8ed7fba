#include "xf/xf_plain_reader.h"

#include <algorithm>

namespace quillet {

XfStatus XfPlainReader::read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink) {
  constexpr std::size_t block_bytes = std::size_t{256} << 10;
  const std::size_t column_bytes = table.components * table.stored_size;
  const hsize_t block_columns = straight != nullptr ? table.columns : block_bytes / column_bytes;
  const hsize_t row_in_chunk = row % table.chunk_rows * table.chunk_columns;
  for (hsize_t chunk = 0; chunk < chunks_per_row; ++chunk) {
    const hsize_t first = chunk * table.chunk_columns;
    const hsize_t end = std::min(first + table.chunk_columns, table.columns);
    const std::uint64_t address =
        table.places[row / table.chunk_rows * chunks_per_row + chunk].address +
        row_in_chunk * column_bytes;
    for (hsize_t column = first; column < end; column += block_columns) {
      const hsize_t count = std::min(block_columns, end - column);
      std::byte* const memory = straight != nullptr ? straight + column * column_bytes
                                                    : block.room(block_columns * column_bytes);
      XfStatus status =
          read_piece(row, address + (column - first) * column_bytes, count * column_bytes, memory);
      if (!status.ok()) return status;
      if (straight == nullptr) sink(column, count, memory);
    }
  }
  return {};
}

XfStatus XfPlainReader::read_piece(hsize_t row, std::uint64_t address, std::size_t bytes,
                                   std::byte* memory) {
  if (table.file.read(address, memory, bytes)) return {};
  return XF_FAILURE(xf_row_name(table, row) + " cannot be read");
}

}  // namespace quillet
