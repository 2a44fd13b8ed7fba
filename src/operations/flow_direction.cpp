#include "operations/flow_direction.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "support/kernel.h"

namespace quillet {
namespace {

// Bits of 32-bit reals. Without their signs they are ordered as the reals are, infinity after all
// finite ones and "not a number" last, so that the octant is found eight (AVX2) nodes at a time,
// with masks (all bits set or none), before the four-at-a-time 64-bit part. Everything in 64-bit
// costs half as much again.
constexpr std::int32_t sign_bit = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t largest_finite = 0x7F7FFFFF;

constexpr double tangent_of_22_5_degrees = 0.41421356237309503;
// Added to every denominator: makes 0 / 0 a 0 and changes no other value.
constexpr double smallest_denominator = 1e-300;

constexpr std::int32_t bits_of(float value) {
  return std::bit_cast<std::int32_t>(value);
}
constexpr float real_of(std::int32_t bits) {
  return std::bit_cast<float>(bits);
}
constexpr std::int32_t mask_if(bool condition) {
  return -static_cast<std::int32_t>(condition);
}

// Arc tangent in degrees of a ratio of either sign, at most the tangent of 22.5 degrees. Minimax
// polynomial of that range; its relative error, 2^-54, is below that of the arithmetic. The even
// and odd terms are summed apart: shorter chains of dependent operations.
inline double small_arc_tangent(double ratio) {
  const double z = ratio * ratio;
  const double z2 = z * z;
  double even = 1.2192617218298523;
  double odd = -2.498568385528371;
  even = even * z2 + 3.2619429715361514;
  odd = odd * z2 - 3.8051537726107454;
  even = even * z2 + 4.406093199609258;
  odd = odd * z2 - 5.208635286350355;
  even = even * z2 + 6.366195198327086;
  odd = odd * z2 - 8.18511130791095;
  even = even * z2 + 11.459155902103474;
  odd = odd * z2 - 19.098593171025655;
  even = even * z2 + 57.29577951308232;
  return ratio * (even + odd * z);
}

// The angle from which, and the sense in which, the arc tangent of shorter / longer counts: the
// direction without its east or west sign is |origin + arc tangent|.
inline float octant_origin(std::int32_t is_eastward, std::int32_t y_bits) {
  const std::int32_t from_east = (y_bits & sign_bit) ^ bits_of(-90.0F);    // -90 or, south, 90
  const std::int32_t from_north = mask_if(y_bits < 0) & bits_of(-180.0F);  // 0 or, south, -180
  return real_of((is_eastward & from_east) | (~is_eastward & from_north));
}

inline float direction(float x, float y) {
  const std::int32_t east = bits_of(x) & ~sign_bit;
  const std::int32_t north = bits_of(y) & ~sign_bit;
  const std::int32_t lesser = std::min(east, north);
  const float origin = octant_origin(mask_if(north < east), bits_of(y));
  // Two infinite components: the ratio becomes finite / infinite = 0, so the 45 is added here.
  const float infinite_start = real_of(mask_if(lesser > largest_finite) & bits_of(45.0F));
  const double shorter = real_of(std::min(lesser, largest_finite));
  const double longer = real_of(std::max(east, north));

  // atan(a / b) = 45 + atan((a - b) / (a + b)): exact on the diagonal.
  const bool is_diagonal = shorter > tangent_of_22_5_degrees * longer;
  const double numerator = is_diagonal ? shorter - longer : shorter;
  const double denominator = longer + (is_diagonal ? shorter : 0.0) + smallest_denominator;
  const double start = (origin + infinite_start) + (is_diagonal ? 45.0 : 0.0);
  const double angle = start + small_arc_tangent(numerator / denominator);
  return std::copysign(static_cast<float>(angle), x);
}

KERNEL_LOOP void find_directions(const float* x, const float* y, float* degrees,
                                 std::int64_t count) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) degrees[i] = direction(x[i], y[i]);
}

}  // namespace

void FLOW_DIRECTION(const float* x, const float* y, float* degrees, std::int64_t count) {
  Kernel<find_directions>::run(x, y, degrees, count);
}

}  // namespace quillet
