#include "support/vector_magnitude.h"

#include "support/kernel.h"

namespace quillet {
namespace {

KERNEL_LOOP void find_magnitudes(const float* x, const float* y, std::int64_t count,
                                 float* magnitude) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) magnitude[i] = VECTOR_MAGNITUDE(x[i], y[i]);
}

KERNEL_LOOP void find_pair_magnitudes(const float* pairs, std::int64_t count, float* magnitude) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    magnitude[i] = VECTOR_MAGNITUDE(pairs[2 * i], pairs[2 * i + 1]);
  }
}

}  // namespace

void VECTOR_MAGNITUDES(const float* x, const float* y, std::int64_t count, float* magnitude) {
  Kernel<find_magnitudes>::run(x, y, count, magnitude);
}

void PAIR_MAGNITUDES(const float* pairs, std::int64_t count, float* magnitude) {
  Kernel<find_pair_magnitudes>::run(pairs, count, magnitude);
}

}  // namespace quillet
