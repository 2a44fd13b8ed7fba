#pragma once

#include <cstdint>

namespace quillet {

// Flow direction of count vectors in degrees, clockwise from north: north (0, 1) is 0, east 90,
// west -90, south 180 or, with x = -0, -180.
//
// degrees[i] is atan2(x[i], y[i]) times 57.29577951308232, computed in 64-bit and rounded to
// 32-bit. It is what std::atan2 in 64-bit gives but for the last bit of a result in many millions
// (never more than one unit in the last place); axes, diagonals, signed zeros, infinities and
// "not a number" are exactly as std::atan2 has them.
//
// x, y and degrees hold count values each. degrees may be x or y itself, so that a result
// replaces a component; arrays that overlap in any other way are not allowed.
void FLOW_DIRECTION(const float* x, const float* y, float* degrees, std::int64_t count);

}  // namespace quillet
