#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace quillet::example {

struct MESH_CELL_TYPE {
  int kind;  // 3, 4 or 9 nodes
  // Counter-clockwise, counted from 0: slots 0-3 corners, 4-7 mid-sides (4 lies between the corners
  // 0 and 1), 8 centre.
  std::array<std::int32_t, 9> nodes;
  std::int32_t row;  // place in the grid, down the valley and across it
  std::int32_t column;
  bool upper;  // of the two triangles of a grid cell, the one with the higher row
  bool in_channel;

  int corners() const { return kind == 3 ? 3 : 4; }
};

// A mildly warped grid over the valley, every sixth cell split into two triangles.
struct FLOOD_MESH_TYPE {
  std::vector<double> s;  // per node, valley coordinates (m); rows across the valley, going down it
  std::vector<double> n;
  std::vector<MESH_CELL_TYPE> cells;
  int first_row_nodes;  // nodes on the upstream and the downstream edge
  int last_row_nodes;
  double row_spacing;  // of the unwarped grid (m)
  double column_spacing;
};

// `node_target` counts all nodes, those in mid-sides and centres included; the mesh comes near it.
FLOOD_MESH_TYPE make_mesh(int node_target, bool quad9);

// Bed elevation per node, a multiple of 0.0001 m: what a reader of the mesh file gets.
std::vector<float> bed_elevations(const FLOOD_MESH_TYPE& mesh, double levee_raise);

}  // namespace quillet::example
