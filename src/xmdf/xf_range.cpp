#include "xmdf/xf_range.h"

#include <algorithm>
#include <array>
#include <limits>

#include "support/kernel_target.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

// Independent running ranges: one alone would be a chain of comparisons that cannot vectorise. As
// many as make the loop over them worth it.
constexpr std::size_t lanes = 256;
constexpr float infinity = std::numeric_limits<float>::infinity();

struct LaneRanges {
  std::array<float, lanes> smallest;
  std::array<float, lanes> largest;

  LaneRanges() {
    smallest.fill(infinity);
    largest.fill(-infinity);
  }
};

// A comparison with something that is not a number is false and leaves the range alone.
inline void include(float value, float& smallest, float& largest) {
  smallest = value < smallest ? value : smallest;
  largest = value > largest ? value : largest;
}

QUILLET_KERNEL
void include_values(const float* values, std::size_t count, float* smallest, float* largest) {
  for (std::size_t i = 0; i < count; ++i) include(values[i], smallest[i], largest[i]);
}

QUILLET_KERNEL
void include_vectors(const float* x, const float* y, std::size_t count, float* smallest,
                     float* largest) {
  for (std::size_t i = 0; i < count; ++i) {
    include(VECTOR_MAGNITUDE(x[i], y[i]), smallest[i], largest[i]);
  }
}

XfRange whole_range(const LaneRanges& ranges) {
  constexpr float no_number = std::numeric_limits<float>::quiet_NaN();
  const float smallest = *std::min_element(ranges.smallest.begin(), ranges.smallest.end());
  const float largest = *std::max_element(ranges.largest.begin(), ranges.largest.end());
  return smallest > largest ? XfRange{no_number, no_number} : XfRange{smallest, largest};
}

}  // namespace

XfRange xf_range_of_values(const float* values, std::size_t count) {
  LaneRanges ranges;
  for (std::size_t first = 0; first < count; first += lanes) {
    include_values(values + first, std::min(lanes, count - first), ranges.smallest.data(),
                   ranges.largest.data());
  }
  return whole_range(ranges);
}

XfRange xf_range_of_vectors(const float* x, const float* y, std::size_t count) {
  LaneRanges ranges;
  for (std::size_t first = 0; first < count; first += lanes) {
    include_vectors(x + first, y + first, std::min(lanes, count - first), ranges.smallest.data(),
                    ranges.largest.data());
  }
  return whole_range(ranges);
}

}  // namespace quillet
