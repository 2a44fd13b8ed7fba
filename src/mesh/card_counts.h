// Counts the cards of a .2dm file without reading their values.
#pragma once

#include <cstdint>

#include "support/input_unit.h"

namespace quillet {

struct CARD_COUNTS_TYPE {
  std::int64_t nodes = 0;
  std::int64_t triangles = 0;
  std::int64_t quads4 = 0;
  std::int64_t quads9 = 0;
};

// Counts the lines that begin with "ND", "E3T", "E4Q" and "E9Q", from the second line on.
CARD_COUNTS_TYPE COUNT_CARDS(const InputUnit& unit);

}  // namespace quillet
