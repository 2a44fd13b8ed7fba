#include "xmdf/xf_chunk_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "support/kernel_target.h"

namespace quillet {
namespace {

// Shuffled: first every element's lowest byte, then every element's second byte, and so on.
QUILLET_KERNEL
void unshuffle_4(const unsigned char* planes, std::size_t count, std::uint32_t* elements) {
  for (std::size_t i = 0; i < count; ++i) {
    elements[i] = std::uint32_t{planes[i]} | std::uint32_t{planes[count + i]} << 8U |
                  std::uint32_t{planes[2 * count + i]} << 16U |
                  std::uint32_t{planes[3 * count + i]} << 24U;
  }
}

}  // namespace

void XfChunkReader::FreeDecompressor::operator()(libdeflate_decompressor* memory) const {
  libdeflate_free_decompressor(memory);
}

bool XfChunkReader::suits(const XfTable& table) {
  // One-byte elements are not changed by shuffling.
  const bool known_size = table.stored_size == 1 || table.stored_size == 4;
  return table.deflated && known_size && table.chunk_components == table.components &&
         std::endian::native == std::endian::little;
}

XfChunkReader::XfChunkReader(const XfTable& stored_table)
    : table(stored_table),
      chunk_bytes(xf_chunk_bytes(stored_table)),
      decompressor(libdeflate_alloc_decompressor()) {
  if (!decompressor) throw std::bad_alloc();
}

XfStatus XfChunkReader::read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink) {
  const bool chunk_is_row = table.chunk_rows == 1 && table.chunk_columns == table.columns;
  if (chunk_is_row && straight != nullptr) return read_chunk(row, 0, straight);
  const hsize_t chunks = xf_chunks_per_row(table);
  const bool keep = table.chunk_rows > 1 && chunk_bytes <= xf_largest_chunk_row / chunks;
  return keep ? read_kept_row(row, sink) : read_chunk_by_chunk(row, sink);
}

XfStatus XfChunkReader::read_kept_row(hsize_t row, const XfPieceSink& sink) {
  const hsize_t chunk_row = row / table.chunk_rows;
  const hsize_t chunks = xf_chunks_per_row(table);
  std::byte* const kept = inflated.room(chunks * chunk_bytes);
  if (kept_chunk_row != chunk_row) {
    kept_chunk_row.reset();
    for (hsize_t chunk = 0; chunk < chunks; ++chunk) {
      XfStatus status = read_chunk(chunk_row, chunk, kept + chunk * chunk_bytes);
      if (!status.ok()) return status;
    }
    kept_chunk_row = chunk_row;
  }
  for (hsize_t chunk = 0; chunk < chunks; ++chunk) {
    deliver(row, chunk, kept + chunk * chunk_bytes, sink);
  }
  return {};
}

XfStatus XfChunkReader::read_chunk_by_chunk(hsize_t row, const XfPieceSink& sink) {
  std::byte* const data = inflated.room(chunk_bytes);
  for (hsize_t chunk = 0; chunk < xf_chunks_per_row(table); ++chunk) {
    XfStatus status = read_chunk(row / table.chunk_rows, chunk, data);
    if (!status.ok()) return status;
    deliver(row, chunk, data, sink);
  }
  return {};
}

void XfChunkReader::deliver(hsize_t row, hsize_t chunk, const std::byte* chunk_data,
                            const XfPieceSink& sink) {
  const std::size_t row_bytes = chunk_bytes / table.chunk_rows;
  const hsize_t first = chunk * table.chunk_columns;
  const hsize_t count = std::min(table.chunk_columns, table.columns - first);
  sink(first, count, chunk_data + row % table.chunk_rows * row_bytes);
}

XfStatus XfChunkReader::read_chunk(hsize_t chunk_row, hsize_t chunk, std::byte* destination) {
  const std::array<hsize_t, 3> offset{chunk_row * table.chunk_rows, chunk * table.chunk_columns, 0};
  hsize_t size = 0;
  if (H5Dget_chunk_storage_size(table.dataset.get(), offset.data(), &size) < 0 || size == 0) {
    return xf_failure(name_of_output(chunk_row) + " is not in the file");
  }
  std::uint32_t skipped_filters = 0;
  XfStatus status = read_stored(offset.data(), size, skipped_filters);
  if (!status.ok()) return status;
  // A writer may leave single chunks unfiltered; HDF5 knows how.
  status =
      skipped_filters == 0 ? inflate(size, destination) : read_by_hdf5(offset.data(), destination);
  if (!status.ok()) status.reason = name_of_output(chunk_row) + " " + status.reason;
  return status;
}

XfStatus XfChunkReader::read_stored(const hsize_t* offset, hsize_t size,
                                    std::uint32_t& skipped_filters) {
  if (size > table.file_size) return xf_failure("has a damaged size");
  if (H5Dread_chunk(table.dataset.get(), H5P_DEFAULT, offset, &skipped_filters, stored.room(size)) <
      0) {
    return xf_failure("cannot be read, expected " + std::to_string(size) + " compressed bytes");
  }
  return {};
}

XfStatus XfChunkReader::inflate(hsize_t size, std::byte* destination) {
  const bool planes = table.shuffled && table.stored_size == 4;
  std::byte* const target = planes ? shuffled.room(chunk_bytes) : destination;
  // Without room for the actual size it must be chunk_bytes exactly.
  const libdeflate_result result = libdeflate_zlib_decompress(decompressor.get(), stored.room(size),
                                                              size, target, chunk_bytes, nullptr);
  if (result != LIBDEFLATE_SUCCESS) return xf_failure("has damaged compressed bytes");
  if (planes) {
    unshuffle_4(reinterpret_cast<const unsigned char*>(target), chunk_bytes / 4,
                reinterpret_cast<std::uint32_t*>(destination));
  }
  return {};
}

XfStatus XfChunkReader::read_by_hdf5(const hsize_t* offset, std::byte* destination) {
  const int rank = table.components == 2 ? 3 : 2;
  const std::array<hsize_t, 3> chunk{table.chunk_rows, table.chunk_columns, table.components};
  const std::array<hsize_t, 3> count{std::min(chunk[0], table.rows - offset[0]),
                                     std::min(chunk[1], table.columns - offset[1]), chunk[2]};
  constexpr std::array<hsize_t, 3> origin{0, 0, 0};
  const XfSpaceHandle memory(H5Screate_simple(rank, chunk.data(), nullptr));
  const XfSpaceHandle file(H5Dget_space(table.dataset.get()));
  H5Sselect_hyperslab(memory.get(), H5S_SELECT_SET, origin.data(), nullptr, count.data(), nullptr);
  H5Sselect_hyperslab(file.get(), H5S_SELECT_SET, offset, nullptr, count.data(), nullptr);
  if (H5Dread(table.dataset.get(), table.stored_type.get(), memory.get(), file.get(), H5P_DEFAULT,
              destination) < 0) {
    return xf_failure("cannot be read");
  }
  return {};
}

std::string XfChunkReader::name_of_output(hsize_t chunk_row) const {
  return table.name + " of output time " + std::to_string(chunk_row * table.chunk_rows + 1);
}

}  // namespace quillet
