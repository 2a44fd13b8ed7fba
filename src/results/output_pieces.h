#pragma once

#include <cstdint>
#include <span>

namespace quillet {

// Takes one output time piece by piece: most pieces come while they are still in the processor's
// cache, and stay for the call only.
class OutputPieces {
 public:
  virtual ~OutputPieces() = default;

  // Of the cells from `first_cell` (from 0) on.
  virtual void take_statuses(std::int64_t first_cell, std::span<const std::int8_t> statuses) = 0;
  // Of the nodes from `first_node` on: one value each, or x1 y1 x2 y2 .... Helpers may call it at
  // the same time for different nodes: it touches nothing but what belongs to those, and throws
  // nothing. After a read that failed the same values may come twice, and count once.
  virtual void take_values(std::int64_t first_node, std::span<const float> values) = 0;
};

}  // namespace quillet
