// Smallest and largest value of an output time: viewers take their colour ranges from them.
#pragma once

#include <cstddef>

namespace quillet {

struct XfRange {
  float smallest;
  float largest;
};

// Values that are not numbers are passed over; when there is nothing else, both are not a number.
XfRange xf_range_of_values(const float* values, std::size_t count);
// The range of the magnitudes.
XfRange xf_range_of_vectors(const float* x, const float* y, std::size_t count);

}  // namespace quillet
