// Deflated chunks read as they are stored and inflated here: several times faster than HDF5's own
// filter, which also hands out whatever follows in memory when a chunk inflates to less than it
// should.
#pragma once

#include <libdeflate.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include "xf/xf_buffer.h"
#include "xf/xf_status.h"
#include "xf/xf_table.h"

namespace quillet {

// Receives `count` columns of a row from `first_column` on, elements as in the file, components
// side by side.
using XfPieceSink =
    std::function<void(std::size_t first_column, std::size_t count, const std::byte* elements)>;

class XfChunkReader {
 public:
  // Whether the table is stored so that this reader may read it.
  static bool suits(const XfTable& table);

  // The table outlives the reader.
  explicit XfChunkReader(const XfTable& stored_table);

  // Row from 0. The pieces arrive in column order. `straight` may be room for the whole row: a
  // chunk that is exactly the row is inflated into it, and the sink is not called.
  XfStatus read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink);

 private:
  struct FreeDecompressor {
    void operator()(libdeflate_decompressor* decompressor) const;
  };

  XfStatus read_kept_row(hsize_t row, const XfPieceSink& sink);
  XfStatus read_chunk_by_chunk(hsize_t row, const XfPieceSink& sink);
  void deliver(hsize_t row, hsize_t chunk, const std::byte* chunk_data, const XfPieceSink& sink);
  XfStatus read_chunk(hsize_t chunk_row, hsize_t chunk, std::byte* destination);
  XfStatus read_stored(const hsize_t* offset, hsize_t& size, std::uint32_t& skipped_filters);
  XfStatus undo_filters(hsize_t size, std::uint32_t skipped_filters, std::byte* destination);
  std::string name_of_chunk(hsize_t chunk_row) const;

  const XfTable& table;
  std::size_t chunk_bytes;
  std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decompressor;
  XfBuffer stored;    // one chunk as it is in the file
  XfBuffer shuffled;  // one inflated chunk whose bytes are still in planes
  XfBuffer inflated;  // one chunk, or a row of chunks
  std::optional<hsize_t> kept_chunk_row;
};

}  // namespace quillet
