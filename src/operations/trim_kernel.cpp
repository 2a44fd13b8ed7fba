#include "operations/trim_kernel.h"

#include "support/kernel_target.h"
#include "support/vector_magnitude.h"

namespace quillet {

QUILLET_KERNEL void TRIM_SCALAR(float* value, std::int64_t count, float limit) {
  for (std::int64_t i = 0; i < count; ++i) value[i] = value[i] < limit ? value[i] : limit;
}

QUILLET_KERNEL void TRIM_VECTOR(float* pairs, std::int64_t count, float limit) {
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

}  // namespace quillet
