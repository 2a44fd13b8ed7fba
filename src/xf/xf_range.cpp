#include "xf/xf_range.h"

#include <algorithm>
#include <limits>

#include "support/kernel.h"

namespace quillet {
namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

// A comparison with something that is not a number is false and leaves the range alone.
KERNEL_LOOP void include_values(const float* values, std::size_t count, float* smallest,
                                float* largest) {
#pragma omp simd
  for (std::size_t i = 0; i < count; ++i) {
    smallest[i] = values[i] < smallest[i] ? values[i] : smallest[i];
    largest[i] = values[i] > largest[i] ? values[i] : largest[i];
  }
}

}  // namespace

XfRangeFinder::XfRangeFinder() {
  smallest.fill(infinity);
  largest.fill(-infinity);
}

void XfRangeFinder::include(const float* values, std::size_t count) {
  for (std::size_t first = 0; first < count; first += lanes) {
    Kernel<include_values>::run(values + first, std::min(lanes, count - first), smallest.data(),
                                largest.data());
  }
}

XfRange XfRangeFinder::range() const {
  constexpr float no_number = std::numeric_limits<float>::quiet_NaN();
  const float least = *std::min_element(smallest.begin(), smallest.end());
  const float most = *std::max_element(largest.begin(), largest.end());
  return least > most ? XfRange{no_number, no_number} : XfRange{least, most};
}

}  // namespace quillet
