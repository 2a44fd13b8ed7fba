// Where the nodes of a mesh lie and which of them each element joins: what operations need of it,
// in plain arrays that take a third of the whole record. The item with id i stands at index i - 1.
#pragma once

#include <array>
#include <cstdint>

#include "mesh/mesh.h"
#include "support/zeroed_table.h"

namespace quillet {

struct MESH_GEOMETRY_TYPE : MESH_SUMMARY_TYPE {
  ZeroedTable<double> x;  // map coordinates, m
  ZeroedTable<double> y;
  ZeroedTable<float> z;  // bed elevation, m
  // Node ids by element, 0 where there is none: the corners; the mid-side nodes and the centre, in
  // a table that ends with the last 9-node quadrilateral.
  ZeroedTable<std::array<std::int32_t, 4>> corners;
  ZeroedTable<std::array<std::int32_t, 5>> inner_nodes;
};

// All slots of an element (see MESH_ELEMENT_TYPE).
inline std::array<std::int32_t, 9> NODES_OF(const MESH_GEOMETRY_TYPE& mesh, std::size_t index) {
  const auto& c = mesh.corners[index];
  if (index >= mesh.inner_nodes.size()) return {c[0], c[1], c[2], c[3]};
  const auto& i = mesh.inner_nodes[index];
  return {c[0], c[1], c[2], c[3], i[0], i[1], i[2], i[3], i[4]};
}

}  // namespace quillet
