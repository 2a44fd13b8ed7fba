// --grid: results as a raster, one band per output time.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "operations/mesh_map.h"

namespace quillet {

struct GridRequest {
  std::string output_name;                        // .tif or .asc
  double cell_size = 0;                           // m, greater than 0
  std::string cell_size_text;                     // as the user gave it
  std::optional<std::int32_t> coordinate_system;  // EPSG code of a projected one
};

// Reads the mesh and draws the values of every output time taken: scalars, or the magnitudes of
// vectors. Cells outside the mesh, on dry land or where the value is no number hold no data. Ends
// the run when there is no output time, when there are several for an .asc grid, and where the
// raster would be too large.
void RUN_GRID(const MeshMapJob& job, const GridRequest& request);

}  // namespace quillet
