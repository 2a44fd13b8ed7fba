// The shape of a member dataset whose rows are output times (Values, Active), and how it is stored.
// A series (Times) is a table of one row with a column per output time. Opening checks that the
// file really holds what the shape claims, so that nothing larger than the file warrants is ever
// allocated and nothing that was never written is read.
#pragma once

#include <hdf5.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "xf/xf_handle.h"
#include "xf/xf_status.h"
#include "xf/xf_stored_file.h"

namespace quillet {

// Where a chunk lies in the file, as it is stored.
struct XfChunkPlace {
  std::uint64_t address = 0;
  std::uint32_t size = 0;
  std::uint32_t skipped_filters = 0;  // a bit for every filter that the writer left out
};

struct XfTable {
  std::string name;
  XfDatasetHandle dataset;
  XfTypeHandle stored_type;
  std::size_t stored_size = 0;  // bytes per element in the file
  int rank = 0;                 // of the dataset
  hsize_t rows = 0;             // output times
  hsize_t columns = 0;          // nodes or cells
  hsize_t components = 1;       // 2 for vectors
  bool chunked = false;
  hsize_t chunk_rows = 0;
  hsize_t chunk_columns = 0;
  hsize_t chunk_components = 1;
  bool filtered = false;
  hsize_t largest_ratio = 1;  // how much the filters can shrink anything; 0: there is no limit
  bool deflated = false;      // every chunk: perhaps shuffled, deflated, perhaps with a checksum
  bool shuffled = false;
  bool has_checksums = false;  // behind the deflated bytes
  XfStoredFile file;           // its size bounds everything that is stored

  // Of every chunk, counted row by row: what is stored can be read without HDF5. Data that are not
  // chunked are one chunk whose size is left out. Empty: HDF5 has to be asked.
  std::vector<XfChunkPlace> places;
};

// For values: rank 2, or 3 with two components.
constexpr int xf_scalar_or_vector = 0;

// Opens the dataset `name` of a group: rank 1 (a series), 2, or 3 with two components.
XfStatus xf_open_table(hid_t group, const char* name, int rank, const XfStoredFile& file,
                       XfTable& table);

// Reals and integers, of a size that is no damage: HDF5 would clear memory for the size claimed.
bool xf_is_number(hid_t type);

// The place of an element in the dataset's own coordinates.
std::array<hsize_t, 3> xf_coordinates(const XfTable& table, hsize_t row, hsize_t column);

// What a row is called where it cannot be read: "Values of output time 3", or the name of a series.
std::string xf_row_name(const XfTable& table, hsize_t row);

// Chunks side by side in a row of chunks, the number of all, and the bytes of one chunk.
hsize_t xf_chunks_per_row(const XfTable& table);
hsize_t xf_chunk_count(const XfTable& table);
hsize_t xf_chunk_bytes(const XfTable& table);

// A row of chunks larger than this is not kept in memory.
constexpr hsize_t xf_largest_chunk_row = hsize_t{512} << 20;

// The most that deflate can shrink anything, by its format.
constexpr hsize_t xf_deflate_ratio = 1032;

}  // namespace quillet
