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
#include <vector>

#include "support/work_crew.h"
#include "xf/xf_buffer.h"
#include "xf/xf_inflater.h"
#include "xf/xf_piece_sink.h"
#include "xf/xf_status.h"
#include "xf/xf_table.h"

namespace quillet {

// How much inflated data may be in memory, and from what amount on threads share the work; bytes.
struct XfChunkMemory {
  // Small chunks that wait for their turn, for each thread. More is of no use: they are asked for
  // as fast as they are inflated.
  hsize_t ahead_per_thread = hsize_t{8} << 20;
  // Of larger ones one less than there are threads, with so much for each thread; at least one.
  // Getting memory for one more takes longer than a thread waits for want of it.
  hsize_t large_ahead_per_thread = hsize_t{64} << 20;
  hsize_t largest_chunk_ahead = hsize_t{128} << 20;
  // In less data than this a thread takes longer to start than it saves.
  hsize_t smallest_shared_table = hsize_t{8} << 20;
  // Chunks side by side, where they hold several rows; or one.
  hsize_t chunk_row = xf_largest_chunk_row;
};

class XfChunkReader {
 public:
  // Whether the table is stored so that this reader may read it.
  static bool suits(const XfTable& table);

  // The table outlives the reader.
  explicit XfChunkReader(const XfTable& stored_table, const XfChunkMemory& allowed_memory = {});

  // Row from 0. The pieces arrive in column order. `straight` may be room for the whole row: a
  // chunk that is exactly the row may be inflated into it, and the sink is not called then.
  XfStatus read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink);

 private:
  // One chunk on its way: read and inflated by whoever comes to it, but read by the main thread
  // where only HDF5 knows its place.
  struct Slot {
    XfBuffer stored;  // as it is in the file; where HDF5 has read it
    hsize_t stored_size = 0;
    std::uint32_t skipped_filters = 0;
    XfBuffer inflated;
    XfStatus status;
    CrewJob job;  // last: it ends before what it works on
  };
  // Some rows of chunks that cannot be kept side by side.
  struct Window {
    XfBuffer rows;
    hsize_t first = 0;
    hsize_t end = 0;
  };
  using ChunkVisitor = std::function<void(hsize_t chunk, const std::byte* inflated)>;

  XfStatus read_straight(hsize_t chunk, std::byte* straight);
  XfStatus read_through_window(hsize_t row, const XfPieceSink& sink);
  XfStatus fill_window(hsize_t row);
  XfStatus visit_chunks(hsize_t row, hsize_t end, const ChunkVisitor& visit);
  void deliver(hsize_t row, hsize_t chunk, const std::byte* chunk_data,
               const XfPieceSink& sink) const;
  bool has_large_chunk_rows() const;
  hsize_t chunks_ahead(hsize_t row) const;

  void pass_chunks_before(hsize_t chunk);
  void begin_chunks_before(hsize_t chunk);
  void begin(hsize_t chunk, Slot& slot, std::byte* destination);
  XfStatus read_by_hdf5(hsize_t chunk, Slot& slot);
  XfStatus read_and_inflate(hsize_t chunk, std::byte* destination) const;
  XfStatus told(hsize_t chunk, XfStatus status) const;
  std::unique_ptr<Slot> spare_slot();

  const XfTable& table;
  XfChunkMemory memory;
  XfChunkForm form;
  hsize_t chunks_per_row;      // of chunks; chunks are counted row by row
  hsize_t largest_stored = 0;  // bytes of a chunk, where places are known
  std::optional<hsize_t> last_row;
  hsize_t ahead = 0;  // chunks beyond the one that is asked for
  Window window;
  std::deque<std::unique_ptr<Slot>> slots;  // for consecutive chunks
  hsize_t first_chunk = 0;                  // that of the first slot
  std::vector<std::unique_ptr<Slot>> spare_slots;
};

}  // namespace quillet
