#include "xf/xf_table.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "xf/xf_chunk_list.h"
#include "xf/xf_member.h"

namespace quillet {
namespace {

constexpr hsize_t largest_extent = std::numeric_limits<std::int32_t>::max();
constexpr double filter_overhead = 4096;

std::string number(hsize_t value) {
  return std::to_string(value);
}

// Puts extents of rank 1 into the second place: a series is one row.
void make_series_a_row(int rank, std::array<hsize_t, 3>& extents) {
  if (rank == 1) extents = {1, extents[0], 1};
}

XfStatus read_shape(int rank, XfTable& table) {
  const XfSpaceHandle space(H5Dget_space(table.dataset.get()));
  const int found = space.valid() ? H5Sget_simple_extent_ndims(space.get()) : -1;
  if (rank == xf_scalar_or_vector) rank = found == 3 ? 3 : 2;
  if (found != rank) {
    return XF_FAILURE(table.name + ": expected rank " + std::to_string(rank) + ", found " +
                      std::to_string(found));
  }
  std::array<hsize_t, 3> extents{0, 1, 1};
  H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr);
  if (*std::max_element(extents.begin(), extents.end()) > largest_extent) {
    return XF_FAILURE(table.name + " has too large an extent");
  }
  if (rank == 3 && extents[2] != 2) {
    return XF_FAILURE(table.name + ": expected 2 components, found " + number(extents[2]));
  }
  make_series_a_row(rank, extents);
  table.rank = rank;
  table.rows = extents[0];
  table.columns = extents[1];
  table.components = extents[2];
  return {};
}

XfStatus read_filters(hid_t properties, XfTable& table) {
  std::vector<H5Z_filter_t> filters;
  for (int i = 0; i < H5Pget_nfilters(properties); ++i) {
    unsigned flags = 0;
    std::size_t values = 0;
    filters.push_back(H5Pget_filter2(properties, i, &flags, &values, nullptr, 0, nullptr, nullptr));
    if (filters.back() < 0 || H5Zfilter_avail(filters.back()) <= 0) {
      return XF_FAILURE(table.name + " is compressed in an unknown way, filter " +
                        std::to_string(filters.back()));
    }
  }
  table.filtered = !filters.empty();
  table.shuffled = filters.size() > 1 && filters.front() == H5Z_FILTER_SHUFFLE;
  table.has_checksums = filters.size() > 1 && filters.back() == H5Z_FILTER_FLETCHER32;
  // Chunks beyond the extents may have been left as they are, which nothing in them tells.
  const auto shrinks = [](H5Z_filter_t filter) {
    return filter != H5Z_FILTER_SHUFFLE && filter != H5Z_FILTER_FLETCHER32;
  };
  const auto shrinking = std::count_if(filters.begin(), filters.end(), shrinks);
  const auto deflates = std::count(filters.begin(), filters.end(), H5Z_FILTER_DEFLATE);
  table.largest_ratio = shrinking == 0 ? 1 : shrinking == 1 && deflates == 1 ? xf_deflate_ratio : 0;
  unsigned options = 0;
  const bool all_alike = H5Pget_chunk_opts(properties, &options) >= 0 &&
                         (options & H5D_CHUNK_DONT_FILTER_PARTIAL_CHUNKS) == 0;
  const std::size_t others = (table.shuffled ? 1 : 0) + (table.has_checksums ? 1 : 0);
  table.deflated = all_alike && filters.size() == others + 1 &&
                   filters[table.shuffled ? 1 : 0] == H5Z_FILTER_DEFLATE;
  return {};
}

// A chunk has 32 bits for its bytes in the file.
bool are_sound(const std::array<hsize_t, 3>& chunk, std::size_t element_size) {
  constexpr hsize_t most_bytes = std::numeric_limits<std::uint32_t>::max();
  hsize_t most = most_bytes / element_size;
  for (const hsize_t extent : chunk) {
    if (extent == 0) return false;
    most /= extent;
  }
  return most > 0;
}

XfStatus read_chunking(hid_t properties, int rank, XfTable& table) {
  std::array<hsize_t, 3> chunk{1, 1, 1};
  if (H5Pget_chunk(properties, rank, chunk.data()) != rank ||
      !are_sound(chunk, table.stored_size)) {
    return XF_FAILURE(table.name + " has damaged chunk extents");
  }
  make_series_a_row(rank, chunk);
  table.chunked = true;
  table.chunk_rows = chunk[0];
  table.chunk_columns = chunk[1];
  table.chunk_components = chunk[2];
  return read_filters(properties, table);
}

XfStatus read_storage(hid_t properties, XfTable& table) {
  table.stored_type = XfTypeHandle(H5Dget_type(table.dataset.get()));
  table.stored_size = H5Tget_size(table.stored_type.get());
  if (table.stored_size == 0) return XF_FAILURE(table.name + " has a damaged type");
  const bool is_chunked = H5Pget_layout(properties) == H5D_CHUNKED;
  return is_chunked ? read_chunking(properties, table.rank, table) : XfStatus{};
}

hsize_t chunks_between(hsize_t extent, hsize_t chunk) {
  return (extent + chunk - 1) / chunk;
}

// In 64-bit reals: damaged extents overflow integers.
double chunk_count(const XfTable& table) {
  return static_cast<double>(chunks_between(table.rows, table.chunk_rows)) *
         static_cast<double>(xf_chunks_per_row(table));
}

double claimed_bytes(const XfTable& table) {
  if (table.chunked) return chunk_count(table) * static_cast<double>(xf_chunk_bytes(table));
  return static_cast<double>(table.rows) * static_cast<double>(table.columns) *
         static_cast<double>(table.components * table.stored_size);
}

// What has no filters or just deflated, in elements side by side, is read without HDF5. But for
// rows that lie in many small pieces it reads whole chunks and keeps them, which is faster.
bool may_be_read_here(const XfTable& table) {
  constexpr hsize_t small_piece = 1024;
  const bool small_pieces = table.chunk_rows > 1 && xf_chunks_per_row(table) > 1 &&
                            xf_chunk_bytes(table) / table.chunk_rows < small_piece;
  return std::endian::native == std::endian::little && table.chunk_components == table.components &&
         (table.deflated || (!table.filtered && !small_pieces));
}

// As far as the file lets find the places.
void find_places(XfTable& table) {
  if (table.chunked) {
    if (may_be_read_here(table)) table.places = xf_list_chunks(table);
    return;
  }
  const haddr_t address = H5Dget_offset(table.dataset.get());
  table.chunk_rows = table.rows;
  table.chunk_columns = table.columns;
  table.chunk_components = table.components;
  const bool is_here = address != HADDR_UNDEF && address <= table.file.size() &&
                       claimed_bytes(table) <= static_cast<double>(table.file.size() - address);
  if (is_here && may_be_read_here(table) && table.file.is_readable()) {
    table.places = {{.address = address}};
  }
}

XfStatus check_every_chunk_written(const XfTable& table) {
  if (!table.places.empty()) return {};
  hsize_t found = 0;
  const XfSpaceHandle all(H5Dget_space(table.dataset.get()));
  if (H5Dget_num_chunks(table.dataset.get(), all.get(), &found) < 0) {
    return XF_FAILURE(table.name + " has a damaged list of chunks");
  }
  if (static_cast<double>(found) >= chunk_count(table)) return {};
  return XF_FAILURE(table.name + " is incomplete, " + number(found) +
                    " of its chunks were written");
}

hsize_t stored_bytes(const XfTable& table) {
  if (!table.chunked || table.places.empty()) return H5Dget_storage_size(table.dataset.get());
  hsize_t bytes = 0;
  for (const XfChunkPlace& place : table.places) bytes += place.size;
  return bytes;
}

// Filters of other kinds may shrink what they are given to any size.
XfStatus check_stored_bytes(const XfTable& table) {
  if (table.largest_ratio == 0) return {};
  const hsize_t stored = std::min<hsize_t>(stored_bytes(table), table.file.size());
  const double claimed = claimed_bytes(table);
  const double warranted = static_cast<double>(stored) * static_cast<double>(table.largest_ratio) +
                           (table.filtered ? filter_overhead : 0);
  if (claimed <= warranted) return {};
  return XF_FAILURE(table.name + " claims more than is stored, expected " +
                    number(static_cast<hsize_t>(std::min(claimed, 1e18))) + " bytes, found " +
                    number(stored) + (table.filtered ? " compressed" : ""));
}

// Nothing is stored that could bear out the columns: they are believed up to what the largest
// meshes have, or as far as the file has bytes.
XfStatus check_without_rows(const XfTable& table) {
  constexpr hsize_t most_on_trust = 100'000'000;
  if (table.columns <= std::max<hsize_t>(most_on_trust, table.file.size())) return {};
  return XF_FAILURE(table.name + " claims more than is stored, expected output times of " +
                    number(table.columns) + " columns, found none");
}

XfStatus check_data(XfTable& table) {
  if (table.rows == 0) return check_without_rows(table);
  if (table.columns == 0) return {};
  find_places(table);
  if (table.chunked) {
    XfStatus status = check_every_chunk_written(table);
    if (!status.ok()) return status;
  }
  return check_stored_bytes(table);
}

// How much HDF5 itself should keep of inflated chunks: nothing where it can read the piece asked
// for straight from the file (unfiltered data, where a cache only costs) or where the raw chunks
// are read; else a row of chunks, so that none is read twice on a walk through the output times.
hsize_t cache_bytes(const XfTable& table) {
  constexpr hsize_t small_piece = hsize_t{32} << 10;
  if (!table.chunked || table.deflated || !table.places.empty()) return 0;
  const bool small_pieces =
      table.chunk_rows > 1 && xf_chunk_bytes(table) / table.chunk_rows < small_piece;
  if (!table.filtered && !small_pieces) return 0;
  const double row =
      static_cast<double>(xf_chunk_bytes(table)) * static_cast<double>(xf_chunks_per_row(table));
  return row <= xf_largest_chunk_row ? static_cast<hsize_t>(row) : 0;
}

XfPropertiesHandle access_with_cache(hsize_t bytes, hsize_t chunks) {
  constexpr hsize_t most_slots = 1000003;
  XfPropertiesHandle access(H5Pcreate(H5P_DATASET_ACCESS));
  const hsize_t slots = std::min(chunks * 10 + 521, most_slots);
  H5Pset_chunk_cache(access.get(), slots, bytes, H5D_CHUNK_CACHE_W0_DEFAULT);
  return access;
}

XfStatus reopen_with_cache(hid_t group, XfTable& table) {
  const hsize_t bytes = cache_bytes(table);
  if (bytes == 0) return {};
  table.dataset.close();
  XfMember member = xf_open_member(group, table.name.c_str(),
                                   access_with_cache(bytes, xf_chunks_per_row(table)).get());
  if (!member.is_present()) return member.status();
  table.dataset = std::move(member.dataset);
  return {};
}

// HDF5 takes the bits from where the type says they are, beyond the number's own memory too.
bool has_bits_inside(hid_t type) {
  const std::size_t bits = 8 * H5Tget_size(type);
  const int offset = H5Tget_offset(type);
  const std::size_t precision = H5Tget_precision(type);
  if (offset < 0 || precision == 0 || static_cast<std::size_t>(offset) + precision > bits) {
    return false;
  }
  if (H5Tget_class(type) == H5T_INTEGER) return true;
  constexpr std::size_t largest_exponent = 32;
  std::size_t sign = 0, exponent_at = 0, exponent = 0, mantissa_at = 0, mantissa = 0;
  return H5Tget_fields(type, &sign, &exponent_at, &exponent, &mantissa_at, &mantissa) >= 0 &&
         sign < bits && exponent <= largest_exponent && exponent_at + exponent <= bits &&
         mantissa_at + mantissa <= bits;
}

}  // namespace

bool xf_is_number(hid_t type) {
  constexpr std::size_t largest_number = 16;
  const H5T_class_t type_class = H5Tget_class(type);
  return (type_class == H5T_FLOAT || type_class == H5T_INTEGER) &&
         H5Tget_size(type) <= largest_number && has_bits_inside(type);
}

std::array<hsize_t, 3> xf_coordinates(const XfTable& table, hsize_t row, hsize_t column) {
  if (table.rank == 1) return {column, 0, 0};
  return {row, column, 0};
}

std::string xf_row_name(const XfTable& table, hsize_t row) {
  return table.rank == 1 ? table.name : table.name + " of output time " + number(row + 1);
}

hsize_t xf_chunks_per_row(const XfTable& table) {
  return chunks_between(table.columns, table.chunk_columns) *
         chunks_between(table.components, table.chunk_components);
}

hsize_t xf_chunk_count(const XfTable& table) {
  return chunks_between(table.rows, table.chunk_rows) * xf_chunks_per_row(table);
}

hsize_t xf_chunk_bytes(const XfTable& table) {
  return table.chunk_rows * table.chunk_columns * table.chunk_components * table.stored_size;
}

XfStatus xf_open_table(hid_t group, const char* name, int rank, const XfStoredFile& file,
                       XfTable& table) {
  table = {};
  table.name = name;
  table.file = file;
  XfMember member = xf_open_member(group, name, H5P_DEFAULT);
  if (!member.is_present()) return member.status();
  table.dataset = std::move(member.dataset);
  XfStatus status = read_shape(rank, table);
  if (status.ok()) status = read_storage(member.properties.get(), table);
  if (status.ok()) status = check_data(table);
  return status.ok() ? reopen_with_cache(group, table) : status;
}

}  // namespace quillet
