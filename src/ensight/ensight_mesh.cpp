#include "ensight/ensight_mesh.h"

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

void take_nodes(ZeroedTable<MESH_NODE_TYPE> nodes, EnsightMesh& mesh) {
  mesh.x.reserve(nodes.size());
  mesh.y.reserve(nodes.size());
  mesh.z.reserve(nodes.size());
  for (const MESH_NODE_TYPE& node : nodes) {
    mesh.x.push_back(node.x);
    mesh.y.push_back(node.y);
    mesh.z.push_back(node.z);
  }
}

ElementBlock empty_block(const ElementShape& shape, std::int32_t count) {
  const auto expected = static_cast<std::size_t>(count);
  ElementBlock block{&shape, {}, {}, {}};
  block.ids.reserve(expected);
  block.nodes.reserve(expected * static_cast<std::size_t>(shape.written_nodes));
  if (shape.mesh_nodes == 9) block.centres.reserve(expected);
  return block;
}

template <std::size_t count>
void add_element(std::int32_t id, const MESH_ELEMENT_TYPE& element, ElementBlock& block) {
  block.ids.push_back(id);
  for (std::size_t slot = 0; slot < count; ++slot) block.nodes.push_back(element.nodes[slot]);
}

void take_elements(const MESH_TYPE& source, EnsightMesh& mesh) {
  ElementBlock triangles = empty_block(shapes[0], source.triangle_count);
  ElementBlock quads = empty_block(shapes[1], source.quad4_count);
  ElementBlock high_quads = empty_block(shapes[2], source.quad9_count);
  std::int32_t id = 0;
  for (const MESH_ELEMENT_TYPE& element : source.elements) {
    ++id;
    const int nodes = NODE_COUNT_OF(element);
    if (nodes == 3) add_element<3>(id, element, triangles);
    if (nodes == 4) add_element<4>(id, element, quads);
    if (nodes != 9) continue;
    add_element<8>(id, element, high_quads);
    high_quads.centres.push_back(element.nodes[8]);
  }
  for (ElementBlock* block : {&triangles, &quads, &high_quads}) {
    if (!block->ids.empty()) mesh.blocks.push_back(std::move(*block));
  }
}

}  // namespace

EnsightMesh MAKE_ENSIGHT_MESH(MESH_TYPE mesh) try {
  EnsightMesh result;
  result.high_resolution = mesh.high_resolution;
  result.fv_mesh = mesh.fv_mesh;
  result.node_count = mesh.node_count;
  result.element_count = mesh.element_count;
  take_nodes(std::move(mesh.nodes), result);
  take_elements(mesh, result);
  return result;
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace quillet
