#include "xmdf/xf_row_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace quillet {

XfStatus XfRowReader::open_values(hid_t group, const char* name, int rank, hsize_t file_size) {
  XfStatus status = xf_open_table(group, name, rank, file_size, table);
  if (!status.ok()) return status;
  const hid_t stored = table.stored_type.get();
  if (!xf_is_number(stored)) return xf_failure(std::string(name) + " holds no numbers");
  use_memory_type(H5T_NATIVE_FLOAT, H5Tequal(stored, H5T_IEEE_F32LE) > 0);
  return {};
}

XfStatus XfRowReader::open_flags(hid_t group, const char* name, hsize_t file_size) {
  XfStatus status = xf_open_table(group, name, 2, file_size, table);
  if (!status.ok()) return status;
  const hid_t stored = table.stored_type.get();
  const H5T_class_t stored_class = H5Tget_class(stored);
  const bool one_byte =
      table.stored_size == 1 &&
      (stored_class == H5T_INTEGER || stored_class == H5T_ENUM || stored_class == H5T_BITFIELD);
  if (!one_byte && stored_class != H5T_INTEGER) {
    return xf_failure(std::string(name) + " holds no flags");
  }
  // Conversion to a signed byte cuts large numbers to its limits, so that none becomes 0.
  use_memory_type(one_byte ? stored : H5T_NATIVE_SCHAR, one_byte);
  return {};
}

void XfRowReader::use_memory_type(hid_t type, bool as_stored) {
  memory_type = type;
  column_bytes = table.components * H5Tget_size(type);
  chunk_reader.reset();
  if (as_stored && XfChunkReader::suits(table)) chunk_reader.emplace(table);
}

XfStatus XfRowReader::read_row(hsize_t row, std::byte* straight) {
  if (table.columns == 0) return {};
  if (!chunk_reader) return read_by_hdf5(row, 0, table.columns, straight);
  return chunk_reader->read_row(
      row, straight, [&](std::size_t first, std::size_t count, const std::byte* elements) {
        std::memcpy(straight + first * column_bytes, elements, count * column_bytes);
      });
}

XfStatus XfRowReader::read_row_in_pieces(hsize_t row, const XfPieceSink& sink) {
  if (table.columns == 0) return {};
  if (chunk_reader) return chunk_reader->read_row(row, nullptr, sink);
  // Filtered data at once, lest a chunk be inflated once per block.
  constexpr hsize_t block_columns = hsize_t{32} << 10;
  const hsize_t step = table.filtered ? table.columns : std::min(table.columns, block_columns);
  std::byte* const memory = block.room(step * column_bytes);
  for (hsize_t first = 0; first < table.columns; first += step) {
    const hsize_t count = std::min(step, table.columns - first);
    XfStatus status = read_by_hdf5(row, first, count, memory);
    if (!status.ok()) return status;
    sink(first, count, memory);
  }
  return {};
}

XfStatus XfRowReader::read_by_hdf5(hsize_t row, hsize_t first, hsize_t count,
                                   std::byte* destination) {
  const std::array<hsize_t, 3> offset{row, first, 0};
  const std::array<hsize_t, 3> extents{1, count, table.components};
  const XfSpaceHandle file(H5Dget_space(table.dataset.get()));
  // Memory of the same rank as the file: anything else is mapped element by element.
  const int rank = H5Sget_simple_extent_ndims(file.get());
  const XfSpaceHandle memory(H5Screate_simple(rank, extents.data(), nullptr));
  H5Sselect_hyperslab(file.get(), H5S_SELECT_SET, offset.data(), nullptr, extents.data(), nullptr);
  if (H5Dread(table.dataset.get(), memory_type, memory.get(), file.get(), H5P_DEFAULT,
              destination) >= 0) {
    return {};
  }
  return xf_failure(table.name + " of output time " + std::to_string(row + 1) + " cannot be read");
}

}  // namespace quillet
