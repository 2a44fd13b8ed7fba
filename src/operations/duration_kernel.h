// Durations and first times above a threshold, one interval between two output times at a time. The
// value is taken to vary linearly within the interval, so crossings are interpolated, in 64-bit.
#pragma once

#include <cstdint>

namespace quillet {

// Adds to `duration` the hours for which the value exceeds the cutoff, per node, between the output
// times `start` and `end` (hours, start <= end) with values `from` and `to`.
void ADD_DURATION_ABOVE(std::int64_t count, const float* from, const float* to, double start,
                        double end, float cutoff, double* duration);

// Where `first_time` is still `never`: sets it to the time at which the value first exceeds
// initial + increase, if it does within the interval.
void NOTE_FIRST_INCREASE(std::int64_t count, const float* initial, const float* from,
                         const float* to, double start, double end, float increase, double never,
                         double* first_time);

// The results as 32-bit reals.
void ROUND_TO_REALS(std::int64_t count, const double* values, float* reals);

}  // namespace quillet
