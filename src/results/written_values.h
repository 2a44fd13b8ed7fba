// What the results that a run writes hold, for its summary.
#pragma once

#include <cstdint>
#include <limits>

#include "results/results_record.h"

namespace quillet {

// Of all output times written so far. Values are those of scalars and the magnitudes of vectors;
// what is not a number is passed over.
struct WrittenValues {
  bool are_wanted = false;  // taking them costs a look at every value
  float smallest = std::numeric_limits<float>::infinity();
  float largest = -std::numeric_limits<float>::infinity();
  std::int64_t largest_place = 0;  // its node, from 1; the first with the largest value
  bool are_of_cells = false;       // instead of nodes
  float largest_time = 0;          // hours
  std::int64_t most_wet_cells = 0;
  std::int64_t cell_count = 0;

  void take_value(float time, std::int64_t place, float value);
  void take_statuses(const RES_TYPE& record);
  // Those of output times after these.
  void take(const WrittenValues& later);
};

WrittenValues& WRITTEN_VALUES();

// Counts the output time in the tally of the run, and looks at its values where they are wanted.
// Maps that tell of values (their sources, their times) are counted only: NOTE_TIME_WRITTEN.
void NOTE_WRITTEN(float time, const RES_TYPE& record);

// The range alone, of a value at a place that is no node: a scalar or a magnitude.
void NOTE_WRITTEN_VALUE(float value);

}  // namespace quillet
