#include "support/interleave.h"

#include "support/kernel_target.h"

namespace quillet {

QUILLET_KERNEL void SEPARATE_COMPONENTS(const float* __restrict pairs, std::int64_t count,
                                        float* __restrict x, float* __restrict y) {
  for (std::int64_t i = 0; i < count; ++i) {
    x[i] = pairs[2 * i];
    y[i] = pairs[2 * i + 1];
  }
}

QUILLET_KERNEL void JOIN_COMPONENTS(const float* __restrict x, const float* __restrict y,
                                    std::int64_t count, float* __restrict pairs) {
  for (std::int64_t i = 0; i < count; ++i) {
    pairs[2 * i] = x[i];
    pairs[2 * i + 1] = y[i];
  }
}

}  // namespace quillet
