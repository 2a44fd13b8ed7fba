#include "operations/duration_kernel.h"

#include "support/kernel_target.h"

namespace quillet {

QUILLET_KERNEL void ADD_DURATION_ABOVE(std::int64_t count, const float* __restrict from,
                                       const float* __restrict to, double start, double end,
                                       float cutoff, double* __restrict duration) {
  const double hours = end - start;
  for (std::int64_t i = 0; i < count; ++i) {
    const double a = from[i];
    const double b = to[i];
    const bool starts_above = a > cutoff;
    const bool ends_above = b > cutoff;
    // The part of the interval above the cutoff when one end is; where none or both are, the
    // division is not used.
    const double higher = starts_above ? a : b;
    const double lower = starts_above ? b : a;
    const double part = (higher - cutoff) / (higher - lower);
    const double crossed = starts_above == ends_above ? 1.0 : part;
    const double share = (starts_above | ends_above) ? crossed : 0.0;
    duration[i] += share * hours;
  }
}

QUILLET_KERNEL void NOTE_FIRST_INCREASE(std::int64_t count, const float* __restrict initial,
                                        const float* __restrict from, const float* __restrict to,
                                        double start, double end, float increase, double never,
                                        double* __restrict first_time) {
  const double hours = end - start;
  for (std::int64_t i = 0; i < count; ++i) {
    const double threshold = double{initial[i]} + double{increase};
    const double a = from[i];
    const double b = to[i];
    const double crossing = start + hours * ((threshold - a) / (b - a));
    const double time = a > threshold ? start : crossing;
    const bool is_first = (first_time[i] == never) & ((a > threshold) | (b > threshold));
    first_time[i] = is_first ? time : first_time[i];
  }
}

QUILLET_KERNEL void ROUND_TO_REALS(std::int64_t count, const double* __restrict values,
                                   float* __restrict reals) {
  for (std::int64_t i = 0; i < count; ++i) reals[i] = static_cast<float>(values[i]);
}

}  // namespace quillet
