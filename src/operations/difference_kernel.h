// One output time of a difference.
#pragma once

#include <cstdint>
#include <functional>

#include "results/results_record.h"

namespace quillet {

// What the wet/dry test compares, per node: water levels and bed elevations of both runs, metres.
// Of some nodes; it stays until that of others is asked for.
struct WetDryArrays {
  const float* level1 = nullptr;
  const float* level2 = nullptr;
  const float* bed1 = nullptr;
  const float* bed2 = nullptr;
};
using WetDryPieces = std::function<WetDryArrays(std::int64_t first_node, std::int64_t count)>;

// result = first - second for every node; a cell is active when it is active (1) in both. Vectors
// are compared by their magnitudes, which replace the x components of the inputs: both are vectors
// or both are scalars. Takes the time of the first, which may be the result too.
void DIFFERENCE(RES_TYPE& first, RES_TYPE& second, RES_TYPE& result);

// The same with the wet/dry test. A node is wet when its bed elevation + 0.001 lies below its water
// level: wet in both runs: first - second; only in the first: 99; only in the second: -99; in none:
// 0. A cell is active when it is active in either.
void DIFFERENCE_WHERE_WET(RES_TYPE& first, RES_TYPE& second, const WetDryPieces& pieces,
                          RES_TYPE& result);

}  // namespace quillet
