#include "xf/xf_chunk_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include "xf/xf_errors.h"

namespace quillet {
namespace {

// Inflated chunks that wait for their turn take this much memory for each thread at most, or one of
// them. More is of no use: the chunks are asked for as fast as they are inflated.
constexpr hsize_t bytes_ahead_per_thread = hsize_t{8} << 20;
constexpr hsize_t largest_chunk_ahead = hsize_t{128} << 20;
constexpr hsize_t most_chunks_ahead = 64;

// Below this much data a thread takes longer to start than it saves.
constexpr hsize_t smallest_shared_table = hsize_t{8} << 20;

hsize_t table_bytes(const XfTable& table) {
  return table.rows * table.columns * table.components * table.stored_size;
}

// A thread keeps what inflating needs.
XfInflater& inflater_of_thread() {
  thread_local XfInflater inflater;
  return inflater;
}

}  // namespace

bool XfChunkReader::suits(const XfTable& table) {
  return table.deflated && table.chunk_components == table.components &&
         std::endian::native == std::endian::little;
}

XfChunkReader::XfChunkReader(const XfTable& stored_table)
    : table(stored_table),
      form{.bytes = xf_chunk_bytes(stored_table),
           .element_size = stored_table.stored_size,
           .shuffled = stored_table.shuffled},
      chunks_per_row(xf_chunks_per_row(stored_table)) {}

XfStatus XfChunkReader::read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink) {
  const hsize_t first = row / table.chunk_rows * chunks_per_row;
  const hsize_t ahead = chunks_ahead(row);
  last_row = row;
  pass_chunks_before(first);
  const bool chunk_is_row = table.chunk_rows == 1 && table.chunk_columns == table.columns;
  if (chunk_is_row && straight != nullptr && ahead == 0 && slots.empty()) {
    return read_straight(first, straight);
  }
  const hsize_t all = (table.rows + table.chunk_rows - 1) / table.chunk_rows * chunks_per_row;
  for (hsize_t chunk = first; chunk < first + chunks_per_row; ++chunk) {
    begin_chunks_before(std::min(chunk + 1 + ahead, all));
    XfStatus status = use_chunk(row, chunk, sink);
    if (!status.ok()) return status;
    if (!keeps_chunks_after(row)) pass_chunks_before(chunk + 1);
  }
  return {};
}

// What a walk will ask for next is inflated ahead; single rows need no more than themselves.
hsize_t XfChunkReader::chunks_ahead(hsize_t row) const {
  const bool is_walk = last_row && row == *last_row + 1;
  const bool is_large = table_bytes(table) >= smallest_shared_table;
  if (!WORK_CREW().has_helpers() || !is_walk || !is_large || form.bytes > largest_chunk_ahead) {
    return 0;
  }
  const hsize_t bytes_ahead = bytes_ahead_per_thread * static_cast<hsize_t>(WORK_CREW().threads());
  return std::clamp(bytes_ahead / form.bytes, hsize_t{1}, most_chunks_ahead);
}

// Chunks of several rows stay until the last of these, where there is room for all side by side.
bool XfChunkReader::keeps_chunks_after(hsize_t row) const {
  const bool rows_follow = row % table.chunk_rows + 1 < table.chunk_rows;
  return rows_follow && form.bytes <= xf_largest_chunk_row / chunks_per_row;
}

XfStatus XfChunkReader::read_straight(hsize_t chunk, std::byte* straight) {
  std::unique_ptr<Slot> slot = spare_slot();
  begin(chunk, *slot, straight);
  slot->job.finish();
  XfStatus status = told(chunk, slot->status);
  spare_slots.push_back(std::move(slot));
  return status;
}

XfStatus XfChunkReader::use_chunk(hsize_t row, hsize_t chunk, const XfPieceSink& sink) {
  Slot& slot = *slots[chunk - first_chunk];
  slot.job.finish();
  if (!slot.status.ok()) return told(chunk, slot.status);
  deliver(row, chunk % chunks_per_row, slot.inflated.room(form.bytes), sink);
  return {};
}

void XfChunkReader::deliver(hsize_t row, hsize_t chunk, const std::byte* chunk_data,
                            const XfPieceSink& sink) {
  const std::size_t row_bytes = form.bytes / table.chunk_rows;
  const hsize_t first = chunk * table.chunk_columns;
  const hsize_t count = std::min(table.chunk_columns, table.columns - first);
  sink(first, count, chunk_data + row % table.chunk_rows * row_bytes);
}

// Gives back the slots of chunks before this one; all of them when it is not among those begun.
void XfChunkReader::pass_chunks_before(hsize_t chunk) {
  const bool is_begun = chunk >= first_chunk && chunk < first_chunk + slots.size();
  while (!slots.empty() && (!is_begun || first_chunk < chunk)) {
    slots.front()->job.take_back();
    spare_slots.push_back(std::move(slots.front()));
    slots.pop_front();
    ++first_chunk;
  }
  first_chunk = chunk;
}

void XfChunkReader::begin_chunks_before(hsize_t chunk) {
  while (first_chunk + slots.size() < chunk) {
    slots.push_back(spare_slot());
    Slot& slot = *slots.back();
    begin(first_chunk + slots.size() - 1, slot, nullptr);
  }
}

// Into `destination`, or into the slot.
void XfChunkReader::begin(hsize_t chunk, Slot& slot, std::byte* destination) {
  slot.status = xf_guard_memory([&] {
    if (destination == nullptr) destination = slot.inflated.room(form.bytes);
    return read_stored(chunk, slot);
  });
  if (!slot.status.ok()) return;
  slot.job.start([this, &slot, destination] {
    slot.status = xf_guard_memory([&] {
      return inflater_of_thread().inflate(form, slot.stored.room(slot.stored_size),
                                          slot.stored_size, slot.skipped_filters, destination);
    });
  });
}

XfStatus XfChunkReader::read_stored(hsize_t chunk, Slot& slot) {
  const hid_t dataset = table.dataset.get();
  const std::array<hsize_t, 3> offset =
      xf_coordinates(table, chunk / chunks_per_row * table.chunk_rows,
                     chunk % chunks_per_row * table.chunk_columns);
  hsize_t size = 0;
  if (H5Dget_chunk_storage_size(dataset, offset.data(), &size) < 0 || size == 0) {
    return XF_FAILURE("is not in the file");
  }
  if (size > table.file_size) return XF_FAILURE("has a damaged size");
  slot.stored_size = size;
  if (H5Dread_chunk(dataset, H5P_DEFAULT, offset.data(), &slot.skipped_filters,
                    slot.stored.room(size)) < 0) {
    return XF_FAILURE("cannot be read, expected " + std::to_string(size) + " compressed bytes");
  }
  return {};
}

// With the name of the chunk before the reason.
XfStatus XfChunkReader::told(hsize_t chunk, XfStatus status) const {
  if (status.kind != XfStatus::Kind::failure) return status;
  const hsize_t row = chunk / chunks_per_row * table.chunk_rows;
  const std::string place = table.rank == 1 ? "" : " of output time " + std::to_string(row + 1);
  status.reason = table.name + place + " " + status.reason;
  return status;
}

std::unique_ptr<XfChunkReader::Slot> XfChunkReader::spare_slot() {
  if (spare_slots.empty()) return std::make_unique<Slot>();
  std::unique_ptr<Slot> slot = std::move(spare_slots.back());
  spare_slots.pop_back();
  return slot;
}

}  // namespace quillet
