// The mesh as values are interpolated in it: elements taken apart into triangles and convex
// quadrilaterals, in plain arrays.
#pragma once

#include <array>
#include <cstdint>

#include "mesh/mesh_geometry.h"
#include "support/large_array.h"

namespace quillet {

// The corners stand counter-clockwise as seen on a map. A triangle lacks the fourth.
struct MeshPart {
  std::array<std::int32_t, 4> nodes{};  // indices, from 0
  std::int32_t element = 0;             // index, from 0

  bool is_triangle() const { return nodes[3] < 0; }
  int corners() const { return is_triangle() ? 3 : 4; }
};

struct PartMesh {
  ZeroedTable<double> x;  // per node, m
  ZeroedTable<double> y;
  LargeArray<MeshPart> parts;  // elements in the order of their ids
  std::int32_t element_count = 0;
  double x_minimum = 0;  // of all nodes
  double x_maximum = 0;
  double y_minimum = 0;
  double y_maximum = 0;

  // What lies this near to an edge (m) is on it: coordinates of map grids have no more digits.
  double edge_tolerance() const;
};

// A triangle is one part, a 4-node quadrilateral too, a 9-node quadrilateral four quadrilaterals
// around its centre. A quadrilateral with a re-entrant corner becomes the two triangles that meet
// there. What has no area is left out. Frees the tables of the mesh. Ends the run when memory does
// not suffice.
PartMesh MAKE_PART_MESH(MESH_GEOMETRY_TYPE mesh);

}  // namespace quillet
