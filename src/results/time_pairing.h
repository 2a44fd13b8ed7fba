// When two output times are the same one.
#pragma once

#include <cmath>

namespace quillet {

// Hours (0.18 s): engines write times as 32-bit reals that went through other units.
constexpr float time_pairing_tolerance = 5e-5F;

inline bool TIMES_MATCH(float a, float b) {
  return !(std::fabs(a - b) > time_pairing_tolerance);
}

}  // namespace quillet
