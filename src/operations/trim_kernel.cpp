#include "operations/trim_kernel.h"

#include "support/kernel.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

KERNEL_LOOP void trim_scalars(float* value, std::int64_t count, float limit) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) value[i] = value[i] < limit ? value[i] : limit;
}

KERNEL_LOOP void trim_vectors(float* pairs, std::int64_t count, float limit) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const float x = pairs[2 * i];
    const float y = pairs[2 * i + 1];
    const float magnitude = VECTOR_MAGNITUDE(x, y);
    const bool is_long = magnitude >= limit;
    // Times 1 and by 1 leaves the other vectors as they are; a choice between old and new values
    // would become a branch, and the loop would not vectorise without AVX2.
    const float factor = is_long ? limit : 1.0F;
    const float divisor = is_long ? magnitude : 1.0F;
    pairs[2 * i] = x * factor / divisor;
    pairs[2 * i + 1] = y * factor / divisor;
  }
}

}  // namespace

void TRIM_SCALAR(float* value, std::int64_t count, float limit) {
  Kernel<trim_scalars>::run(value, count, limit);
}

void TRIM_VECTOR(float* pairs, std::int64_t count, float limit) {
  Kernel<trim_vectors>::run(pairs, count, limit);
}

}  // namespace quillet
