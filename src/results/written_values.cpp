#include "results/written_values.h"

#include <algorithm>

#include "support/run_tally.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

float value_at(const RES_TYPE& record, std::int64_t node) {
  const ND_RES_TYPE& nd = record.nd;
  if (!record.is_vector) return nd.x[node];
  if (record.holds_pairs) return VECTOR_MAGNITUDE(nd.x[2 * node], nd.x[2 * node + 1]);
  return VECTOR_MAGNITUDE(nd.x[node], nd.y[node]);
}

}  // namespace

WrittenValues& WRITTEN_VALUES() {
  static WrittenValues values;
  return values;
}

void WrittenValues::take_value(float time, std::int64_t place, float value) {
  smallest = std::min(smallest, value);
  if (!(value > largest)) return;
  largest = value;
  largest_place = place;
  largest_time = time;
}

void WrittenValues::take_statuses(const RES_TYPE& record) {
  const auto& status = record.cell.status;
  const auto wet = std::count(status.begin(), status.end(), std::int8_t{1});
  most_wet_cells = std::max<std::int64_t>(most_wet_cells, wet);
  cell_count = record.cell_count;
}

void WrittenValues::take(const WrittenValues& later) {
  smallest = std::min(smallest, later.smallest);
  take_value(later.largest_time, later.largest_place, later.largest);
  most_wet_cells = std::max(most_wet_cells, later.most_wet_cells);
  cell_count = later.cell_count;
  are_of_cells = later.are_of_cells;
}

void NOTE_WRITTEN(float time, const RES_TYPE& record) {
  NOTE_TIME_WRITTEN();
  WrittenValues& written = WRITTEN_VALUES();
  if (!written.are_wanted) return;
  for (std::int64_t node = 0; node < record.node_count; ++node) {
    written.take_value(time, node + 1, value_at(record, node));
  }
  written.take_statuses(record);
}

void NOTE_WRITTEN_VALUE(float value) {
  WrittenValues& written = WRITTEN_VALUES();
  if (!written.are_wanted) return;
  written.smallest = std::min(written.smallest, value);
  written.largest = std::max(written.largest, value);
}

}  // namespace quillet
