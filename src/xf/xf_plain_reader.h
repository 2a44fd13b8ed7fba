// Data without filters, read straight from their places in the file.
#pragma once

#include "xf/xf_buffer.h"
#include "xf/xf_piece_sink.h"
#include "xf/xf_status.h"
#include "xf/xf_table.h"

namespace quillet {

class XfPlainReader {
 public:
  // Whether the table is stored so that this reader may read it.
  static bool suits(const XfTable& table) { return !table.filtered && !table.places.empty(); }

  // The table outlives the reader.
  explicit XfPlainReader(const XfTable& stored_table)
      : table(stored_table), chunks_per_row(xf_chunks_per_row(stored_table)) {}

  // Row from 0, elements as in the file: into `straight`, or in pieces, in column order, that the
  // processor's cache still holds.
  XfStatus read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink);

 private:
  XfStatus read_piece(hsize_t row, std::uint64_t address, std::size_t bytes, std::byte* memory);

  const XfTable& table;
  hsize_t chunks_per_row;
  XfBuffer block;
};

}  // namespace quillet
