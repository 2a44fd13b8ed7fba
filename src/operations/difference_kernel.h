// One output time of a difference.
#pragma once

#include <cstdint>
#include <vector>

#include "results/results_record.h"

namespace quillet {

// What the wet/dry test compares, per node: water levels and bed elevations of both runs, metres.
struct WetDryArrays {
  const float* level1 = nullptr;
  const float* level2 = nullptr;
  const float* bed1 = nullptr;
  const float* bed2 = nullptr;
};

// result = first - second for every node; a cell is active when it is active (1) in both. Vectors
// are compared by their magnitudes, which replace the x components of the inputs: both are vectors
// or both are scalars. Takes the time of the first.
void DIFFERENCE(RES_TYPE& first, RES_TYPE& second, RES_TYPE& result);

// The same with the wet/dry test. A node is wet when its bed elevation + 0.001 lies below its water
// level: wet in both runs: first - second; only in the first: 99; only in the second: -99; in none:
// 0. A cell is active when it is active in either.
void DIFFERENCE_WHERE_WET(RES_TYPE& first, RES_TYPE& second, const WetDryArrays& arrays,
                          RES_TYPE& result);

}  // namespace quillet
