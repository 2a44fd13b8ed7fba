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

void NOTE_WRITTEN(float time, const RES_TYPE& record) {
  ++RUN_TALLY().times_written;
  WrittenValues& written = WRITTEN_VALUES();
  if (!written.are_wanted) return;
  for (std::int64_t node = 0; node < record.node_count; ++node) {
    const float value = value_at(record, node);
    written.smallest = std::min(written.smallest, value);
    if (!(value > written.largest)) continue;
    written.largest = value;
    written.largest_node = node + 1;
    written.largest_time = time;
  }
  const auto& status = record.cell.status;
  const auto wet = std::count(status.begin(), status.end(), std::int8_t{1});
  written.most_wet_cells = std::max<std::int64_t>(written.most_wet_cells, wet);
  written.cell_count = record.cell_count;
}

void NOTE_WRITTEN_VALUE(float value) {
  WrittenValues& written = WRITTEN_VALUES();
  if (!written.are_wanted) return;
  written.smallest = std::min(written.smallest, value);
  written.largest = std::max(written.largest, value);
}

}  // namespace quillet
