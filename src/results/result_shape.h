// How much a dataset holds at each of its output times.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "support/numbers.h"

namespace quillet {

struct ResultShape {
  std::int32_t node_count = 0;
  std::optional<std::int32_t> cell_count{};  // none where the file tells none
  bool is_vector = false;
};

// Equal numbers of nodes and cells; a number of cells that no file tells fits every other.
inline bool SAME_COUNTS(const ResultShape& a, const ResultShape& b) {
  const bool same_cells = !a.cell_count || !b.cell_count || *a.cell_count == *b.cell_count;
  return a.node_count == b.node_count && same_cells;
}

// Of one output time, in memory.
inline std::int64_t BYTES_OF(const ResultShape& shape) {
  constexpr std::int64_t value_size = sizeof(float);
  return shape.node_count * value_size * (shape.is_vector ? 2 : 1) + shape.cell_count.value_or(0);
}

// "nodes 6, cells 4", or the nodes alone.
inline std::string COUNTS_TEXT(const ResultShape& shape) {
  const std::string nodes = "nodes " + AINTEGER(shape.node_count);
  return shape.cell_count ? nodes + ", cells " + AINTEGER(*shape.cell_count) : nodes;
}

}  // namespace quillet
