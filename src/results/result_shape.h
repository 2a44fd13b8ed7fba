// How much a dataset holds at each of its output times.
#pragma once

#include <cstdint>
#include <optional>

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

}  // namespace quillet
