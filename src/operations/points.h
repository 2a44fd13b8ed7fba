// --points: time series of results at points of the map.
#pragma once

#include <string>

#include "operations/mesh_map.h"

namespace quillet {

struct PointsRequest {
  std::string points_file;  // .csv
  std::string output_name;  // .csv
};

// Finds the points in the mesh and writes a row for every output time taken, with the value at each
// point: scalars, or both components of vectors. Points outside the mesh and those that are dry
// throughout are named on the console; where there is no value, the field is empty.
void RUN_POINTS(const MeshMapJob& job, const PointsRequest& request);

}  // namespace quillet
