// Vectors stand as x1 y1 x2 y2 ... in files and as two arrays in memory.
#pragma once

#include <cstdint>

namespace quillet {

// `pairs` holds 2 * count values; the arrays hold count values each and do not overlap it.
void SEPARATE_COMPONENTS(const float* pairs, std::int64_t count, float* x, float* y);
void JOIN_COMPONENTS(const float* x, const float* y, std::int64_t count, float* pairs);

}  // namespace quillet
