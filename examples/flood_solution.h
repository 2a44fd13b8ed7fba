#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "flood_mesh.h"
#include "flood_wave.h"

namespace quillet::example {

// Where results are given: at the mesh nodes, or at the cell centres of a finite-volume run.
struct RESULT_POINTS_TYPE {
  std::vector<double> s;  // valley coordinates (m)
  std::vector<double> n;
  std::vector<float> bed;  // elevation (m)
};

RESULT_POINTS_TYPE node_points(const FLOOD_MESH_TYPE& mesh, const std::vector<float>& bed);
RESULT_POINTS_TYPE cell_points(const FLOOD_MESH_TYPE& mesh, const std::vector<float>& bed);

// The maps of one output time. A dry point has its bed elevation as level, depth 0, velocity 0.
struct RESULT_MAPS_TYPE {
  std::vector<float> level;      // per point (m)
  std::vector<float> depth;      // per point, exactly level - bed (m)
  std::vector<float> velocity;   // x and y per point, interleaved (m/s)
  std::vector<std::int8_t> wet;  // per cell: 1 when the mean depth of its points exceeds wet_depth
};

constexpr float wet_depth = 0.01f;

// Lays the flood wave over the terrain. Level: that of the river, or of the ponds behind the levee,
// at the point's place down the valley. Velocity: Manning's formula with the valley's slope,
// depth^(2/3) * sqrt(slope) / roughness, along the channel and the valley, and a share across,
// away from the channel while the water rises and back while it falls.
class FloodSolution {
 public:
  // `mesh` must outlive the solution.
  FloodSolution(const FLOOD_MESH_TYPE& mesh, RESULT_POINTS_TYPE points, bool at_cells);

  std::size_t point_count() const { return bed_.size(); }
  std::size_t cell_count() const { return mesh_.cells.size(); }

  void evaluate(const FLOOD_PROFILE_TYPE& profile, RESULT_MAPS_TYPE& maps) const;

 private:
  struct POINT_CONSTANTS_TYPE {
    std::int32_t station;      // the one upstream, in the profile's arrays
    float weight;              // of the next one
    float along_x, along_y;    // velocity at 1 m of depth
    float across_x, across_y;  // added per m/h of rise
  };

  static POINT_CONSTANTS_TYPE constants_at(double s, double n);
  void evaluate_points(const FLOOD_PROFILE_TYPE& profile, RESULT_MAPS_TYPE& maps) const;
  void evaluate_cells(RESULT_MAPS_TYPE& maps) const;

  const FLOOD_MESH_TYPE& mesh_;
  std::vector<float> bed_;
  std::vector<POINT_CONSTANTS_TYPE> constants_;
  bool at_cells_;
};

// Keeps the greatest level, depth and speed (with its direction) of every point, and which cells
// were ever wet, as the engine does while it runs. Empty `maxima` become a copy of `maps`.
void track_maxima(const RESULT_MAPS_TYPE& maps, RESULT_MAPS_TYPE& maxima);

// The same for the smallest values, and for cells that were always wet.
void track_minima(const RESULT_MAPS_TYPE& maps, RESULT_MAPS_TYPE& minima);

float magnitude(float x, float y);

}  // namespace quillet::example
