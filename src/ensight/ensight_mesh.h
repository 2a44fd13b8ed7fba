// A mesh as EnSight has it: plain arrays of coordinates, and the elements grouped by shape and, in
// a shape, by id.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "mesh/mesh_geometry.h"
#include "support/large_array.h"

namespace quillet {

struct ElementShape {
  std::string_view name;  // of the block: "tria3"
  int mesh_nodes;         // nodes of the element in the mesh
  int corners;
  int written_nodes;              // corners, then mid-sides; never the centre
  std::string_view begin_report;  // console lines around the writing
  std::string_view end_report;
};

struct ElementBlock {
  const ElementShape* shape = nullptr;
  LargeArray<std::int32_t> ids;      // ascending, from 1
  LargeArray<std::int32_t> nodes;    // from 1; as many per element as are written
  LargeArray<std::int32_t> centres;  // from 1; of 9-node quadrilaterals

  std::int32_t count() const { return static_cast<std::int32_t>(ids.size()); }
};

struct EnsightMesh {
  bool high_resolution = false;
  bool fv_mesh = false;
  std::int32_t node_count = 0;
  std::int32_t element_count = 0;  // in the mesh; ids are not above it
  ZeroedTable<double> x;           // map coordinates, m
  ZeroedTable<double> y;
  ZeroedTable<float> z;
  // Over all nodes. Without nodes the minima lie above the maxima.
  double x_minimum = 0;
  double x_maximum = 0;
  double y_minimum = 0;
  double y_maximum = 0;
  float z_minimum = 0;
  float z_maximum = 0;
  // Those that have elements, in the order tria3, quad4, quad8. The nodes that an element really
  // has decide, not its kind: one of kind 9 without nine nodes is drawn by its corners.
  std::vector<ElementBlock> blocks;
};

// Takes the tables of the mesh apart and frees each as soon as it can. Ends the run when memory
// does not suffice.
EnsightMesh MAKE_ENSIGHT_MESH(MESH_GEOMETRY_TYPE mesh);

}  // namespace quillet
