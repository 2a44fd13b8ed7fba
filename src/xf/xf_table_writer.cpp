#include "xf/xf_table_writer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "xf/xf_errors.h"

namespace quillet {
namespace {

constexpr std::array<hsize_t, 3> origin{0, 0, 0};

// Every element is written, so fill values would only cost; no times, so that equal runs give equal
// bytes.
XfPropertiesHandle properties_without_fill(int compression) {
  XfPropertiesHandle properties(H5Pcreate(H5P_DATASET_CREATE));
  H5Pset_obj_track_times(properties.get(), false);
  H5Pset_fill_time(properties.get(), H5D_FILL_TIME_NEVER);
  if (compression > 0) H5Pset_deflate(properties.get(), static_cast<unsigned>(compression));
  return properties;
}

}  // namespace

void XfTableWriter::FreeCompressor::operator()(libdeflate_compressor* memory) const {
  libdeflate_free_compressor(memory);
}

XfStatus XfTableWriter::create(hid_t group, const std::string& member, hid_t stored_type,
                               hsize_t new_column_count, hsize_t component_count,
                               const XfStorage& how_stored) {
  name = member;
  storage = how_stored;
  column_count = new_column_count;
  components = component_count;
  row_bytes = column_count * components * H5Tget_size(stored_type);
  extent_rows = storage.expected_rows;
  const int rank = components == 1 ? 2 : 3;
  const std::array<hsize_t, 3> extents{extent_rows, column_count, components};
  const std::array<hsize_t, 3> largest{H5S_UNLIMITED, column_count, components};
  const XfSpaceHandle space(H5Screate_simple(rank, extents.data(), largest.data()));
  const XfPropertiesHandle properties = properties_without_fill(storage.compression);
  const std::array<hsize_t, 3> chunk{storage.rows_per_chunk, std::max<hsize_t>(column_count, 1),
                                     components};
  if (H5Pset_chunk(properties.get(), rank, chunk.data()) < 0) {
    return XF_FAILURE(name + " has too large a chunk");
  }
  dataset = XfDatasetHandle(H5Dcreate2(group, name.c_str(), stored_type, space.get(), H5P_DEFAULT,
                                       properties.get(), H5P_DEFAULT));
  if (!dataset.valid()) return failure();
  if (storage.compression > 0) compressor.reset(libdeflate_alloc_compressor(storage.compression));
  if (storage.compression > 0 && !compressor) throw std::bad_alloc();
  return {};
}

std::byte* XfTableWriter::next_row() {
  return chunk_rows.room(storage.rows_per_chunk * row_bytes) +
         written_rows % storage.rows_per_chunk * row_bytes;
}

XfStatus XfTableWriter::write_row(const std::byte* row) {
  const hsize_t place = written_rows % storage.rows_per_chunk;
  const hsize_t first_row = written_rows - place;
  if (storage.rows_per_chunk > 1) {
    std::byte* const own_row = next_row();
    if (row != own_row) std::memcpy(own_row, row, row_bytes);
    row = own_row - place * row_bytes;
  }
  ++written_rows;
  const bool chunk_is_full = place + 1 == storage.rows_per_chunk;
  if (!set_rows(std::max(extent_rows, written_rows))) return failure();
  return chunk_is_full ? write_chunk(first_row, row) : XfStatus{};
}

XfStatus XfTableWriter::complete() {
  if (!set_rows(written_rows)) return failure();
  const hsize_t left = written_rows % storage.rows_per_chunk;
  if (left > 0) {
    std::byte* const chunk = next_row() - left * row_bytes;
    std::memset(next_row(), 0, (storage.rows_per_chunk - left) * row_bytes);
    XfStatus status = write_chunk(written_rows - left, chunk);
    if (!status.ok()) return status;
  }
  return dataset.close() ? XfStatus{} : failure();
}

bool XfTableWriter::set_rows(hsize_t rows) {
  if (rows == extent_rows) return true;
  const std::array<hsize_t, 3> extents{rows, column_count, components};
  extent_rows = rows;
  return H5Dset_extent(dataset.get(), extents.data()) >= 0;
}

XfStatus XfTableWriter::write_chunk(hsize_t first_row, const std::byte* chunk) {
  std::size_t size = storage.rows_per_chunk * row_bytes;
  if (size == 0) return {};
  if (compressor) {
    const std::size_t bound = libdeflate_zlib_compress_bound(compressor.get(), size);
    std::byte* const target = compressed.room(bound);
    size = libdeflate_zlib_compress(compressor.get(), chunk, size, target, bound);
    chunk = target;
  }
  std::array<hsize_t, 3> offset = origin;
  offset[0] = first_row;
  const herr_t result = H5Dwrite_chunk(dataset.get(), H5P_DEFAULT, 0, offset.data(), size, chunk);
  return result >= 0 ? XfStatus{} : failure();
}

XfStatus XfTableWriter::failure() const {
  return xf_hdf5_failure(name + " cannot be written");
}

XfStatus xf_write_series(hid_t group, const char* name, hid_t stored_type, hid_t memory_type,
                         const void* values, hsize_t count, int compression) {
  constexpr hsize_t chunk = 10;
  constexpr hsize_t unlimited = H5S_UNLIMITED;
  const XfSpaceHandle space(H5Screate_simple(1, &count, &unlimited));
  const XfPropertiesHandle properties = properties_without_fill(compression);
  H5Pset_chunk(properties.get(), 1, &chunk);
  XfDatasetHandle dataset(H5Dcreate2(group, name, stored_type, space.get(), H5P_DEFAULT,
                                     properties.get(), H5P_DEFAULT));
  const bool written = dataset.valid() &&
                       (count == 0 || H5Dwrite(dataset.get(), memory_type, H5S_ALL, H5S_ALL,
                                               H5P_DEFAULT, values) >= 0) &&
                       dataset.close();
  return written ? XfStatus{} : xf_hdf5_failure(std::string(name) + " cannot be written");
}

}  // namespace quillet
