// Smallest and largest value of an output time: viewers take their colour ranges from them.
#pragma once

#include <array>
#include <cstddef>

namespace quillet {

struct XfRange {
  float smallest;
  float largest;
};

// Finds the range of values that come piece by piece. Values that are not numbers are passed over;
// when there is nothing else, both ends are not a number.
class XfRangeFinder {
 public:
  XfRangeFinder();
  void include(const float* values, std::size_t count);
  XfRange range() const;

 private:
  // Independent running ranges: one alone would be a chain of comparisons that cannot vectorise. As
  // many as make the loop over them worth it.
  static constexpr std::size_t lanes = 256;

  std::array<float, lanes> smallest;
  std::array<float, lanes> largest;
};

inline XfRange XF_RANGE_OF(const float* values, std::size_t count) {
  XfRangeFinder finder;
  finder.include(values, count);
  return finder.range();
}

}  // namespace quillet
