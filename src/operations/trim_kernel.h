#pragma once

#include <cstdint>

namespace quillet {

// Limits count scalar values, in place, in 32-bit arithmetic: a value that is not less than the
// limit becomes the limit. So does a value that is not a number.
void TRIM_SCALAR(float* value, std::int64_t count, float limit);

// Shortens count vectors (x[i], y[i]), in place, in 32-bit arithmetic: when the magnitude (see
// VECTOR_MAGNITUDE) is at least the limit, each component is multiplied by the limit and then
// divided by the magnitude. Other vectors, those with a component that is not a number among them,
// stay as they are. With a limit of 0 or less a vector of magnitude 0 becomes not a number: 0 / 0.
// x and y hold count values each and do not overlap.
void TRIM_VECTOR(float* x, float* y, std::int64_t count, float limit);

}  // namespace quillet
