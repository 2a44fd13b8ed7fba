#include "support/interleave.h"

#include "support/kernel.h"

namespace quillet {
namespace {

KERNEL_LOOP void separate(const float* pairs, std::int64_t count, float* x, float* y) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    x[i] = pairs[2 * i];
    y[i] = pairs[2 * i + 1];
  }
}

KERNEL_LOOP void join(const float* x, const float* y, std::int64_t count, float* pairs) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    pairs[2 * i] = x[i];
    pairs[2 * i + 1] = y[i];
  }
}

}  // namespace

void SEPARATE_COMPONENTS(const float* pairs, std::int64_t count, float* x, float* y) {
  Kernel<separate>::run(pairs, count, x, y);
}

void JOIN_COMPONENTS(const float* x, const float* y, std::int64_t count, float* pairs) {
  Kernel<join>::run(x, y, count, pairs);
}

}  // namespace quillet
