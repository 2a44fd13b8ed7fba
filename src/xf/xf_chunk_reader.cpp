#include "xf/xf_chunk_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <utility>

#include "xf/xf_errors.h"

namespace quillet {
namespace {

constexpr hsize_t most_chunks_ahead = 64;

hsize_t table_bytes(const XfTable& table) {
  return table.rows * table.columns * table.components * table.stored_size;
}

// A thread keeps what inflating needs.
struct Workplace {
  XfInflater inflater;
  XfBuffer stored;
};

Workplace& workplace_of_thread() {
  thread_local Workplace workplace;
  return workplace;
}

XfStatus unreadable(hsize_t size) {
  return XF_FAILURE("cannot be read, expected " + std::to_string(size) + " compressed bytes");
}

}  // namespace

bool XfChunkReader::suits(const XfTable& table) {
  return table.deflated && table.chunk_components == table.components &&
         std::endian::native == std::endian::little;
}

XfChunkReader::XfChunkReader(const XfTable& stored_table, const XfChunkMemory& allowed_memory)
    : table(stored_table),
      memory(allowed_memory),
      form{.bytes = xf_chunk_bytes(stored_table),
           .element_size = stored_table.stored_size,
           .shuffled = stored_table.shuffled,
           .has_checksum = stored_table.has_checksums},
      chunks_per_row(xf_chunks_per_row(stored_table)) {
  for (const XfChunkPlace& place : table.places) {
    largest_stored = std::max(largest_stored, hsize_t{place.size});
  }
}

XfStatus XfChunkReader::read_row(hsize_t row, std::byte* straight, const XfPieceSink& sink) {
  const hsize_t first = row / table.chunk_rows * chunks_per_row;
  ahead = chunks_ahead(row);
  last_row = row;
  if (has_large_chunk_rows()) return read_through_window(row, sink);
  pass_chunks_before(first);
  const bool chunk_is_row = table.chunk_rows == 1 && table.chunk_columns == table.columns;
  if (chunk_is_row && straight != nullptr && ahead == 0 && slots.empty()) {
    return read_straight(first, straight);
  }
  const bool is_last_of_chunk = (row + 1) % table.chunk_rows == 0;
  return visit_chunks(row, xf_chunk_count(table), [&](hsize_t chunk, const std::byte* inflated) {
    deliver(row, chunk, inflated, sink);
    if (is_last_of_chunk) pass_chunks_before(chunk + 1);
  });
}

// What a walk will ask for next is inflated ahead; single rows need no more than themselves. Who
// begins with the first row is likely to go on.
hsize_t XfChunkReader::chunks_ahead(hsize_t row) const {
  const bool is_walk = row == (last_row ? *last_row + 1 : 0);
  const bool is_large = table_bytes(table) >= memory.smallest_shared_table;
  if (!WORK_CREW().has_helpers() || !is_walk || !is_large ||
      form.bytes > memory.largest_chunk_ahead) {
    return 0;
  }
  const auto threads = static_cast<hsize_t>(WORK_CREW().threads());
  const hsize_t small_ones = memory.ahead_per_thread * threads / form.bytes;
  const hsize_t large_ones = memory.large_ahead_per_thread * threads / form.bytes;
  return std::clamp(std::max(small_ones, std::min(large_ones, threads - 1)), hsize_t{1},
                    most_chunks_ahead);
}

// One chunk alone is in memory anyway.
bool XfChunkReader::has_large_chunk_rows() const {
  return table.chunk_rows > 1 && chunks_per_row > 1 &&
         form.bytes > memory.chunk_row / chunks_per_row;
}

// Every chunk is inflated once for as many rows as there is room for, not once for each row.
XfStatus XfChunkReader::read_through_window(hsize_t row, const XfPieceSink& sink) {
  if (row < window.first || row >= window.end) {
    XfStatus status = fill_window(row);
    if (!status.ok()) return status;
  }
  const std::size_t row_bytes = table.columns * table.components * table.stored_size;
  sink(
      0, table.columns,
      window.rows.room((window.end - window.first) * row_bytes) + (row - window.first) * row_bytes);
  return {};
}

XfStatus XfChunkReader::fill_window(hsize_t row) {
  const std::size_t column_bytes = table.components * table.stored_size;
  const std::size_t row_bytes = table.columns * column_bytes;
  const hsize_t end_of_chunk =
      std::min((row / table.chunk_rows + 1) * table.chunk_rows, table.rows);
  const hsize_t count = std::clamp(memory.chunk_row / row_bytes, hsize_t{1}, end_of_chunk - row);
  std::byte* const rows = window.rows.room(count * row_bytes);
  const hsize_t first_in_row = row / table.chunk_rows * chunks_per_row;
  window.end = window.first;  // nothing, until all is there
  pass_chunks_before(first_in_row);
  XfStatus status = visit_chunks(
      row, first_in_row + chunks_per_row, [&](hsize_t chunk, const std::byte* inflated) {
        for (hsize_t i = 0; i < count; ++i) {
          deliver(row + i, chunk, inflated,
                  [&](std::size_t first, std::size_t columns, const std::byte* elements) {
                    std::memcpy(rows + i * row_bytes + first * column_bytes, elements,
                                columns * column_bytes);
                  });
        }
        pass_chunks_before(chunk + 1);
      });
  if (!status.ok()) return status;
  window.first = row;
  window.end = row + count;
  return {};
}

XfStatus XfChunkReader::read_straight(hsize_t chunk, std::byte* straight) {
  std::unique_ptr<Slot> slot = spare_slot();
  begin(chunk, *slot, straight);
  slot->job.finish();
  XfStatus status = told(chunk, slot->status);
  spare_slots.push_back(std::move(slot));
  return status;
}

// The chunks of the row; those that will be asked for next are begun, `end` and what follows are
// not.
XfStatus XfChunkReader::visit_chunks(hsize_t row, hsize_t end, const ChunkVisitor& visit) {
  const hsize_t first = row / table.chunk_rows * chunks_per_row;
  for (hsize_t chunk = first; chunk < first + chunks_per_row; ++chunk) {
    begin_chunks_before(std::min(chunk + 1 + ahead, end));
    Slot& slot = *slots[chunk - first_chunk];
    slot.job.finish();
    if (!slot.status.ok()) return told(chunk, slot.status);
    visit(chunk, slot.inflated.room(form.bytes));
  }
  return {};
}

void XfChunkReader::deliver(hsize_t row, hsize_t chunk, const std::byte* chunk_data,
                            const XfPieceSink& sink) const {
  const std::size_t row_bytes = form.bytes / table.chunk_rows;
  const hsize_t first = chunk % chunks_per_row * table.chunk_columns;
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
    return table.places.empty() ? read_by_hdf5(chunk, slot) : XfStatus{};
  });
  if (!slot.status.ok()) return;
  slot.job.start([this, chunk, &slot, destination] {
    slot.status = xf_guard_memory([&] {
      if (!table.places.empty()) return read_and_inflate(chunk, destination);
      return workplace_of_thread().inflater.inflate(form, slot.stored.room(slot.stored_size),
                                                    slot.stored_size, slot.skipped_filters,
                                                    destination);
    });
  });
}

XfStatus XfChunkReader::read_and_inflate(hsize_t chunk, std::byte* destination) const {
  const XfChunkPlace& place = table.places[chunk];
  Workplace& workplace = workplace_of_thread();
  std::byte* const stored = workplace.stored.room(largest_stored);
  if (!table.file.read(place.address, stored, place.size)) return unreadable(place.size);
  return workplace.inflater.inflate(form, stored, place.size, place.skipped_filters, destination);
}

XfStatus XfChunkReader::read_by_hdf5(hsize_t chunk, Slot& slot) {
  const hid_t dataset = table.dataset.get();
  const std::array<hsize_t, 3> offset =
      xf_coordinates(table, chunk / chunks_per_row * table.chunk_rows,
                     chunk % chunks_per_row * table.chunk_columns);
  hsize_t size = 0;
  if (H5Dget_chunk_storage_size(dataset, offset.data(), &size) < 0 || size == 0) {
    return XF_FAILURE("is not in the file");
  }
  if (size > table.file.size()) return XF_FAILURE("has a damaged size");
  slot.stored_size = size;
  if (H5Dread_chunk(dataset, H5P_DEFAULT, offset.data(), &slot.skipped_filters,
                    slot.stored.room(size)) < 0) {
    return unreadable(size);
  }
  return {};
}

// With the name of the chunk before the reason.
XfStatus XfChunkReader::told(hsize_t chunk, XfStatus status) const {
  if (status.kind != XfStatus::Kind::failure) return status;
  const hsize_t row = chunk / chunks_per_row * table.chunk_rows;
  status.reason = xf_row_name(table, row) + " " + status.reason;
  return status;
}

std::unique_ptr<XfChunkReader::Slot> XfChunkReader::spare_slot() {
  if (spare_slots.empty()) return std::make_unique<Slot>();
  std::unique_ptr<Slot> slot = std::move(spare_slots.back());
  spare_slots.pop_back();
  return slot;
}

}  // namespace quillet
