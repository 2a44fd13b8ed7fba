#pragma once

#include <cstdint>

namespace quillet {

// Limits count scalar values, in place, in 32-bit arithmetic: a value that is not less than the
// limit becomes the limit. So does a value that is not a number.
void TRIM_SCALAR(float* value, std::int64_t count, float limit);

// Shortens count vectors, which stand as x1 y1 x2 y2 ..., in place, in 32-bit arithmetic: when the
// magnitude (see VECTOR_MAGNITUDE) is at least the limit, each component is multiplied by the limit
// and then divided by the magnitude. Other vectors, those with a component that is not a number
// among them, stay as they are. With a limit of 0 or less a vector of magnitude 0 becomes not a
// number: 0 / 0.
void TRIM_VECTOR(float* pairs, std::int64_t count, float limit);

}  // namespace quillet
