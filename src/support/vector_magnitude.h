#pragma once

#include <cmath>
#include <cstdint>

namespace quillet {

// Length of the vector (x, y), in the unit of its components and in 32-bit arithmetic throughout:
// 0 when both components are within 0.000001 of zero, else the square root of x * x + y * y (so
// infinite once a square overflows; not a number when a component is not a number).
// Loops that call it vectorise: the root is always taken, the test only selects.
[[gnu::always_inline]] inline float VECTOR_MAGNITUDE(float x, float y) {
  constexpr float negligible = 0.000001F;
  const float length = std::sqrt(x * x + y * y);
  const bool is_negligible = (std::fabs(x) <= negligible) & (std::fabs(y) <= negligible);
  return is_negligible ? 0.0F : length;
}

// The magnitudes of `count` vectors; `magnitude` may be the array of x components.
void VECTOR_MAGNITUDES(const float* x, const float* y, std::int64_t count, float* magnitude);

// The same of vectors that stand as x1 y1 x2 y2 ...; `magnitude` does not overlap them.
void PAIR_MAGNITUDES(const float* pairs, std::int64_t count, float* magnitude);

}  // namespace quillet
