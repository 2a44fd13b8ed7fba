#pragma once

#include <vector>

#include "flood_solution.h"

namespace quillet::example {

constexpr float inundation_depth = 0.1f;  // m, above which a point counts as flooded
constexpr float never_flooded = -99999.0f;

// What the engine keeps beside the output times while it runs. Hours per point.
struct FLOOD_HISTORY_TYPE {
  RESULT_MAPS_TYPE maxima;
  RESULT_MAPS_TYPE minima;
  std::vector<float> time_of_peak;      // of the level; the earliest on a tie
  std::vector<float> time_of_first;     // when a point is first flooded; never_flooded otherwise
  std::vector<float> duration_flooded;  // one output interval per output time that finds it flooded
};

// Adds one output time to the history, which starts empty. `interval` is the hours from one output
// time to the next.
void track_history(float hours, float interval, const RESULT_MAPS_TYPE& maps,
                   FLOOD_HISTORY_TYPE& history);

}  // namespace quillet::example
