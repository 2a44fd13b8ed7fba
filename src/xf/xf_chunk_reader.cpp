#include "xf/xf_chunk_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "support/kernel.h"

namespace quillet {
namespace {

// Shuffled: first every element's lowest byte, then every element's second byte, and so on.
KERNEL_LOOP void unshuffle_4(const unsigned char* planes, std::size_t count,
                             std::uint32_t* elements) {
#pragma omp simd
  for (std::size_t i = 0; i < count; ++i) {
    elements[i] = std::uint32_t{planes[i]} | std::uint32_t{planes[count + i]} << 8U |
                  std::uint32_t{planes[2 * count + i]} << 16U |
                  std::uint32_t{planes[3 * count + i]} << 24U;
  }
}

void unshuffle(const std::byte* planes, std::size_t size, std::size_t count, std::byte* elements) {
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t plane = 0; plane < size; ++plane) {
      elements[i * size + plane] = planes[plane * count + i];
    }
  }
}

}  // namespace

void XfChunkReader::FreeDecompressor::operator()(libdeflate_decompressor* memory) const {
  libdeflate_free_decompressor(memory);
}

bool XfChunkReader::suits(const XfTable& table) {
  return table.deflated && table.chunk_components == table.components &&
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
  const std::array<hsize_t, 3> offset =
      xf_coordinates(table, chunk_row * table.chunk_rows, chunk * table.chunk_columns);
  hsize_t size = 0;
  std::uint32_t skipped_filters = 0;
  XfStatus status = read_stored(offset.data(), size, skipped_filters);
  if (status.ok()) status = undo_filters(size, skipped_filters, destination);
  if (!status.ok()) status.reason = name_of_chunk(chunk_row) + " " + status.reason;
  return status;
}

XfStatus XfChunkReader::read_stored(const hsize_t* offset, hsize_t& size,
                                    std::uint32_t& skipped_filters) {
  const hid_t dataset = table.dataset.get();
  if (H5Dget_chunk_storage_size(dataset, offset, &size) < 0 || size == 0) {
    return xf_failure("is not in the file");
  }
  if (size > table.file_size) return xf_failure("has a damaged size");
  if (H5Dread_chunk(dataset, H5P_DEFAULT, offset, &skipped_filters, stored.room(size)) < 0) {
    return xf_failure("cannot be read, expected " + std::to_string(size) + " compressed bytes");
  }
  return {};
}

// A writer may leave out a filter for single chunks.
XfStatus XfChunkReader::undo_filters(hsize_t size, std::uint32_t skipped_filters,
                                     std::byte* destination) {
  const std::uint32_t shuffle_bit = table.shuffled ? 1U : 0U;
  const std::uint32_t deflate_bit = table.shuffled ? 2U : 1U;
  const bool planes = table.shuffled && (skipped_filters & shuffle_bit) == 0;
  std::byte* const target = planes ? shuffled.room(chunk_bytes) : destination;
  const std::byte* const source = stored.room(size);
  if ((skipped_filters & deflate_bit) != 0) {
    if (size != chunk_bytes) return xf_failure("has a damaged size");
    std::memcpy(target, source, size);
  } else if (libdeflate_zlib_decompress(decompressor.get(), source, size, target, chunk_bytes,
                                        nullptr) != LIBDEFLATE_SUCCESS) {
    // Without a place for the actual size, libdeflate insists on exactly chunk_bytes.
    return xf_failure("has damaged compressed bytes");
  }
  if (planes && table.stored_size == 4) {
    Kernel<unshuffle_4>::run(reinterpret_cast<const unsigned char*>(target), chunk_bytes / 4,
                             reinterpret_cast<std::uint32_t*>(destination));
  } else if (planes) {
    unshuffle(target, table.stored_size, chunk_bytes / table.stored_size, destination);
  }
  return {};
}

std::string XfChunkReader::name_of_chunk(hsize_t chunk_row) const {
  if (table.rank == 1) return table.name;
  return table.name + " of output time " + std::to_string(chunk_row * table.chunk_rows + 1);
}

}  // namespace quillet
