#include "support/vector_magnitude.h"

#include "support/kernel_target.h"

namespace quillet {

QUILLET_KERNEL void VECTOR_MAGNITUDES(const float* x, const float* y, std::int64_t count,
                                      float* magnitude) {
  for (std::int64_t i = 0; i < count; ++i) magnitude[i] = VECTOR_MAGNITUDE(x[i], y[i]);
}

QUILLET_KERNEL void PAIR_MAGNITUDES(const float* __restrict pairs, std::int64_t count,
                                    float* __restrict magnitude) {
  for (std::int64_t i = 0; i < count; ++i) {
    magnitude[i] = VECTOR_MAGNITUDE(pairs[2 * i], pairs[2 * i + 1]);
  }
}

}  // namespace quillet
