#include "ensight/ensight_mesh.h"

#include <algorithm>
#include <array>
#include <new>

#include "support/console.h"

namespace quillet {
namespace {

constexpr std::array<ElementShape, 3> shapes{{
    {"tria3", 3, 3, 3, "Writing triangles (tria3)...", "Done writing triangles"},
    {"quad4", 4, 4, 4, "Writing four node quadrilaterals (quad4)...", "Done writing quad4"},
    {"quad8", 9, 4, 8, "Writing eight node quadrilaterals (quad8)...", "Done writing quad8"},
}};

ElementBlock empty_block(const ElementShape& shape, std::int32_t count) {
  const auto expected = static_cast<std::size_t>(count);
  ElementBlock block{&shape, {}, {}, {}};
  block.ids.reserve(expected);
  block.nodes.reserve(expected * static_cast<std::size_t>(shape.written_nodes));
  if (shape.mesh_nodes == 9) block.centres.reserve(expected);
  return block;
}

template <std::size_t count>
void add_element(std::int32_t id, const std::array<std::int32_t, 9>& nodes, ElementBlock& block) {
  block.ids.push_back(id);
  for (std::size_t slot = 0; slot < count; ++slot) block.nodes.push_back(nodes[slot]);
}

void take_elements(const MESH_GEOMETRY_TYPE& source, EnsightMesh& mesh) {
  ElementBlock triangles = empty_block(shapes[0], source.triangle_count);
  ElementBlock quads = empty_block(shapes[1], source.quad4_count);
  ElementBlock high_quads = empty_block(shapes[2], source.quad9_count);
  std::int32_t id = 0;
  for (std::size_t i = 0; i < source.corners.size(); ++i) {
    ++id;
    const auto nodes = NODES_OF(source, i);
    const int count = NODE_COUNT_OF(nodes);
    if (count == 3) add_element<3>(id, nodes, triangles);
    if (count == 4) add_element<4>(id, nodes, quads);
    if (count != 9) continue;
    add_element<8>(id, nodes, high_quads);
    high_quads.centres.push_back(nodes[8]);
  }
  for (ElementBlock* block : {&triangles, &quads, &high_quads}) {
    if (!block->ids.empty()) mesh.blocks.push_back(std::move(*block));
  }
}

// `bound` is what every coordinate lies within.
template <typename Value>
void determine(const ZeroedTable<Value>& values, Value bound, Value& minimum, Value& maximum) {
  Value least = bound;
  Value greatest = -bound;
  for (const Value value : values) {
    least = std::min(least, value);
    greatest = std::max(greatest, value);
  }
  minimum = least;
  maximum = greatest;
}

}  // namespace

EnsightMesh MAKE_ENSIGHT_MESH(MESH_GEOMETRY_TYPE mesh) try {
  EnsightMesh result;
  result.high_resolution = mesh.high_resolution;
  result.fv_mesh = mesh.fv_mesh;
  result.node_count = mesh.node_count;
  result.element_count = mesh.element_count;
  result.x = std::move(mesh.x);
  result.y = std::move(mesh.y);
  result.z = std::move(mesh.z);
  determine(result.x, 999999999.0, result.x_minimum, result.x_maximum);
  determine(result.y, 999999999.0, result.y_minimum, result.y_maximum);
  determine(result.z, 1.0e9F, result.z_minimum, result.z_maximum);
  take_elements(mesh, result);
  return result;
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace quillet
