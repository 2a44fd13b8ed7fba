// Deflated chunks read as they are stored and inflated here: several times faster than HDF5's own
// filter, which also hands out whatever follows in memory when a chunk inflates to less than it
// should. On a walk through the rows the crew inflates chunks before they are asked for; what is
// wrong with one is told when its turn comes.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "support/work_crew.h"
#include "xf/xf_buffer.h"
#include "xf/xf_inflater.h"
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
  // chunk that is exactly the row may be inflated into it, and the sink is not called then.
  XfStatus read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink);

 private:
  // One chunk on its way: read by the main thread, inflated by whoever comes to it.
  struct Slot {
    XfBuffer stored;  // as it is in the file
    hsize_t stored_size = 0;
    std::uint32_t skipped_filters = 0;
    XfBuffer inflated;
    XfStatus status;
    CrewJob job;  // last: it ends before what it works on
  };

  XfStatus read_straight(hsize_t chunk, std::byte* straight);
  XfStatus use_chunk(hsize_t row, hsize_t chunk, const XfPieceSink& sink);
  void deliver(hsize_t row, hsize_t chunk, const std::byte* chunk_data, const XfPieceSink& sink);
  bool keeps_chunks_after(hsize_t row) const;
  hsize_t chunks_ahead(hsize_t row) const;

  void pass_chunks_before(hsize_t chunk);
  void begin_chunks_before(hsize_t chunk);
  void begin(hsize_t chunk, Slot& slot, std::byte* destination);
  XfStatus read_stored(hsize_t chunk, Slot& slot);
  XfStatus told(hsize_t chunk, XfStatus status) const;
  std::unique_ptr<Slot> spare_slot();

  const XfTable& table;
  XfChunkForm form;
  hsize_t chunks_per_row;  // of chunks; chunks are counted row by row
  std::optional<hsize_t> last_row;
  std::deque<std::unique_ptr<Slot>> slots;  // for consecutive chunks
  hsize_t first_chunk = 0;                  // that of the first slot
  std::vector<std::unique_ptr<Slot>> spare_slots;
};

}  // namespace quillet
