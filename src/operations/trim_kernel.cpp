#include "operations/trim_kernel.h"

#include "support/kernel_target.h"
#include "support/vector_magnitude.h"

namespace quillet {

QUILLET_KERNEL void TRIM_SCALAR(float* value, std::int64_t count, float limit) {
  for (std::int64_t i = 0; i < count; ++i) value[i] = value[i] < limit ? value[i] : limit;
}

QUILLET_KERNEL void TRIM_VECTOR(float* x, float* y, std::int64_t count, float limit) {
#pragma GCC ivdep  // no checks for overlap: see the contract
  for (std::int64_t i = 0; i < count; ++i) {
    const float magnitude = VECTOR_MAGNITUDE(x[i], y[i]);
    const bool is_long = magnitude >= limit;
    // Times 1 and by 1 leaves the other vectors as they are; a choice between old and new values
    // would become a branch, and the loop would not vectorise without AVX2.
    const float factor = is_long ? limit : 1.0F;
    const float divisor = is_long ? magnitude : 1.0F;
    x[i] = x[i] * factor / divisor;
    y[i] = y[i] * factor / divisor;
  }
}

}  // namespace quillet
