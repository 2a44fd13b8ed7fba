#include "xf/xf_row_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

namespace quillet {
namespace {

// Bytes inflate in a fraction of the time of the values beside them: no more of them wait than
// small chunks take. Memory that is touched for the first time costs as much as inflating into it.
XfChunkMemory memory_for(const XfTable& table) {
  XfChunkMemory memory;
  if (table.stored_size == 1) memory.large_ahead_per_thread = memory.ahead_per_thread;
  return memory;
}

}  // namespace

XfStatus XfRowReader::open_numbers(hid_t group, const char* name, int rank, hid_t wanted_type,
                                   const XfStoredFile& file) {
  XfStatus status = xf_open_table(group, name, rank, file, table);
  if (!status.ok()) return status;
  if (!xf_is_number(table.stored_type.get())) {
    return XF_FAILURE(std::string(name) + " holds no numbers");
  }
  use_memory_type(wanted_type);
  return {};
}

XfStatus XfRowReader::open_flags(hid_t group, const char* name, const XfStoredFile& file) {
  XfStatus status = xf_open_table(group, name, 2, file, table);
  if (!status.ok()) return status;
  const hid_t stored = table.stored_type.get();
  const H5T_class_t stored_class = H5Tget_class(stored);
  const bool one_byte =
      table.stored_size == 1 &&
      (stored_class == H5T_INTEGER || stored_class == H5T_ENUM || stored_class == H5T_BITFIELD);
  const bool integer = stored_class == H5T_INTEGER && xf_is_number(stored);
  if (!one_byte && !integer) {
    return XF_FAILURE(std::string(name) + " holds no flags");
  }
  // Conversion to a signed byte cuts large numbers to its limits, so that none becomes 0.
  use_memory_type(one_byte ? stored : H5T_NATIVE_SCHAR);
  return {};
}

void XfRowReader::use_memory_type(hid_t type) {
  memory_type = type;
  column_bytes = table.components * H5Tget_size(type);
  as_stored = H5Tequal(table.stored_type.get(), type) > 0;
  plain_reader.reset();
  chunk_reader.reset();
  if (XfPlainReader::suits(table)) {
    plain_reader.emplace(table);
  } else if (XfChunkReader::suits(table)) {
    chunk_reader.emplace(table, memory_for(table));
  }
}

XfStatus XfRowReader::read_here(hsize_t row, std::byte* straight, const XfPieceSink& sink) {
  return plain_reader ? plain_reader->read_row(row, straight, sink)
                      : chunk_reader->read_row(row, straight, sink);
}

XfStatus XfRowReader::read_row(hsize_t row, std::byte* straight) {
  if (table.columns == 0) return {};
  if (!reads_here()) return read_by_hdf5(row, 0, table.columns, straight);
  const auto copy = [&](std::size_t first, std::size_t count, const std::byte* elements) {
    std::memcpy(straight + first * column_bytes, elements, count * column_bytes);
  };
  return as_stored ? read_here(row, straight, copy) : read_and_convert(row, copy);
}

XfStatus XfRowReader::read_and_convert(hsize_t row, const XfPieceSink& sink) {
  const std::size_t stored_bytes = table.components * table.stored_size;
  bool converted = true;
  XfStatus status =
      read_here(row, nullptr, [&](std::size_t first, std::size_t count, const std::byte* elements) {
        std::byte* const memory = block.room(count * std::max(stored_bytes, column_bytes));
        std::memcpy(memory, elements, count * stored_bytes);
        converted =
            converted && H5Tconvert(table.stored_type.get(), memory_type, count * table.components,
                                    memory, nullptr, H5P_DEFAULT) >= 0;
        if (converted) sink(first, count, memory);
      });
  return converted ? status : XF_FAILURE(table.name + " has a type that cannot be converted");
}

XfStatus XfRowReader::read_row_in_pieces(hsize_t row, const XfPieceSink& sink) {
  if (table.columns == 0) return {};
  if (reads_here()) {
    return as_stored ? read_here(row, nullptr, sink) : read_and_convert(row, sink);
  }
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
  const std::array<hsize_t, 3> offset = xf_coordinates(table, row, first);
  std::array<hsize_t, 3> extents{1, count, table.components};
  if (table.rank == 1) extents = {count, 1, 1};
  const XfSpaceHandle file(H5Dget_space(table.dataset.get()));
  // Memory of the same rank as the file: anything else is mapped element by element.
  const XfSpaceHandle memory(H5Screate_simple(table.rank, extents.data(), nullptr));
  H5Sselect_hyperslab(file.get(), H5S_SELECT_SET, offset.data(), nullptr, extents.data(), nullptr);
  if (H5Dread(table.dataset.get(), memory_type, memory.get(), file.get(), H5P_DEFAULT,
              destination) >= 0) {
    return {};
  }
  return XF_FAILURE(xf_row_name(table, row) + " cannot be read");
}

}  // namespace quillet
