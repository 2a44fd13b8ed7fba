#include "operations/duration_kernel.h"

#include "support/kernel.h"

namespace quillet {
namespace {

KERNEL_LOOP void add_duration_above(std::int64_t count, const float* from, const float* to,
                                    double start, double end, float cutoff, double* duration) {
  const double hours = end - start;
#pragma omp simd
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

KERNEL_LOOP void note_first_increase(std::int64_t count, const float* initial, const float* from,
                                     const float* to, double start, double end, float increase,
                                     double never, double* first_time) {
  const double hours = end - start;
#pragma omp simd
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

KERNEL_LOOP void round_to_reals(std::int64_t count, const double* values, float* reals) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) reals[i] = static_cast<float>(values[i]);
}

}  // namespace

void ADD_DURATION_ABOVE(std::int64_t count, const float* from, const float* to, double start,
                        double end, float cutoff, double* duration) {
  Kernel<add_duration_above>::run(count, from, to, start, end, cutoff, duration);
}

void NOTE_FIRST_INCREASE(std::int64_t count, const float* initial, const float* from,
                         const float* to, double start, double end, float increase, double never,
                         double* first_time) {
  Kernel<note_first_increase>::run(count, initial, from, to, start, end, increase, never,
                                   first_time);
}

void ROUND_TO_REALS(std::int64_t count, const double* values, float* reals) {
  Kernel<round_to_reals>::run(count, values, reals);
}

}  // namespace quillet
