// Writes a member dataset whose rows are output times (Values, Active), whole chunks at once.
#pragma once

#include <hdf5.h>
#include <libdeflate.h>

#include <cstddef>
#include <memory>
#include <string>

#include "xf/xf_buffer.h"
#include "xf/xf_handle.h"
#include "xf/xf_status.h"

namespace quillet {

struct XfStorage {
  int compression = 0;        // deflate level 1 to 9; 0 is none
  hsize_t expected_rows = 0;  // 0: not known
  hsize_t rows_per_chunk = 1;
};

class XfTableWriter {
 public:
  // One component gives extents (rows, columns), two give (rows, columns, 2). `stored_type` is how
  // the elements stand in memory too.
  XfStatus create(hid_t group, const std::string& member, hid_t stored_type,
                  hsize_t new_column_count, hsize_t component_count, const XfStorage& how_stored);

  bool created() const { return dataset.valid(); }
  hsize_t rows() const { return written_rows; }
  hsize_t columns() const { return column_count; }

  // Where the next row may be put together.
  std::byte* next_row();
  // `row` may be next_row() or any other memory.
  XfStatus write_row(const std::byte* row);
  // Writes the last chunk, cuts the extents to the rows written, and closes the dataset.
  XfStatus complete();

 private:
  struct FreeCompressor {
    void operator()(libdeflate_compressor* compressor) const;
  };

  bool set_rows(hsize_t rows);
  XfStatus write_chunk(hsize_t first_row, const std::byte* chunk);
  XfStatus failure() const;

  std::string name;
  XfDatasetHandle dataset;
  XfStorage storage;
  hsize_t column_count = 0;
  hsize_t components = 1;
  std::size_t row_bytes = 0;
  hsize_t written_rows = 0;
  hsize_t extent_rows = 0;
  XfBuffer chunk_rows;  // the rows of the chunk that is being filled
  XfBuffer compressed;
  std::unique_ptr<libdeflate_compressor, FreeCompressor> compressor;
};

// A dataset of one number per output time (Times, Mins, Maxs), written at once.
XfStatus xf_write_series(hid_t group, const char* name, hid_t stored_type, hid_t memory_type,
                         const void* values, hsize_t count, int compression);

}  // namespace quillet
