// One row of a member dataset (the values or flags of one output time), however it is stored.
#pragma once

#include <hdf5.h>

#include <cstddef>
#include <optional>

#include "xf/xf_buffer.h"
#include "xf/xf_chunk_reader.h"
#include "xf/xf_piece_sink.h"
#include "xf/xf_plain_reader.h"
#include "xf/xf_status.h"
#include "xf/xf_table.h"

namespace quillet {

class XfRowReader {
 public:
  XfRowReader() = default;
  XfRowReader(const XfRowReader&) = delete;
  XfRowReader& operator=(const XfRowReader&) = delete;

  // Elements arrive as `wanted_type`, a predefined type; stored as any real or integer.
  XfStatus open_numbers(hid_t group, const char* name, int rank, hid_t wanted_type,
                        const XfStoredFile& file);
  // Elements arrive as bytes that are 0 or not; stored as any integer, or as an enumeration or bits
  // of one byte.
  XfStatus open_flags(hid_t group, const char* name, const XfStoredFile& file);

  int rank() const { return table.rank; }
  hsize_t rows() const { return table.rows; }
  hsize_t columns() const { return table.columns; }
  // Reading takes HDF5's filters or conversions, not a mere copy.
  bool transforms() const { return table.filtered || !as_stored; }

  // Row from 0. `straight` takes the whole row.
  XfStatus read_row(hsize_t row, std::byte* straight);
  // The row in pieces, for what is not wanted as it is stored.
  XfStatus read_row_in_pieces(hsize_t row, const XfPieceSink& sink);

 private:
  void use_memory_type(hid_t type);
  bool reads_here() const { return plain_reader || chunk_reader; }
  XfStatus read_here(hsize_t row, std::byte* straight, const XfPieceSink& sink);
  XfStatus read_and_convert(hsize_t row, const XfPieceSink& sink);
  XfStatus read_by_hdf5(hsize_t row, hsize_t first, hsize_t count, std::byte* destination);

  XfTable table;
  hid_t memory_type = H5I_INVALID_HID;  // of HDF5 or of the table
  std::size_t column_bytes = 0;         // in memory
  bool as_stored = false;               // the memory type is the stored type
  // One of these; none where HDF5 has to read.
  std::optional<XfPlainReader> plain_reader;
  std::optional<XfChunkReader> chunk_reader;
  XfBuffer block;
};

}  // namespace quillet
