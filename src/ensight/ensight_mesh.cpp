#include "ensight/ensight_mesh.h"

#include <algorithm>
#include <array>
#include <new>

#include "support/console.h"
#include "support/work_crew.h"

namespace quillet {
namespace {

constexpr std::array<ElementShape, 3> shapes{{
    {"tria3", 3, 3, 3, "Writing triangles (tria3)...", "Done writing triangles"},
    {"quad4", 4, 4, 4, "Writing four node quadrilaterals (quad4)...", "Done writing quad4"},
    {"quad8", 9, 4, 8, "Writing eight node quadrilaterals (quad8)...", "Done writing quad8"},
}};

using Blocks = std::array<ElementBlock, shapes.size()>;

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

void find_extents(EnsightMesh& mesh) {
  determine(mesh.x, 999999999.0, mesh.x_minimum, mesh.x_maximum);
  determine(mesh.y, 999999999.0, mesh.y_minimum, mesh.y_maximum);
  determine(mesh.z, 1.0e9F, mesh.z_minimum, mesh.z_maximum);
}

enum class Taken { all, four_node_quads, others };

// In one walk; what is not taken is passed over.
void take_elements(const MESH_GEOMETRY_TYPE& source, Taken taken, Blocks& blocks) {
  const bool takes_quads = taken != Taken::others;
  const bool takes_others = taken != Taken::four_node_quads;
  std::int32_t id = 0;
  for (std::size_t i = 0; i < source.corners.size(); ++i) {
    ++id;
    const auto nodes = NODES_OF(source, i);
    const int count = NODE_COUNT_OF(nodes);
    if (count == 4 && takes_quads) add_element<4>(id, nodes, blocks[1]);
    if (!takes_others) continue;
    if (count == 3) add_element<3>(id, nodes, blocks[0]);
    if (count != 9) continue;
    add_element<8>(id, nodes, blocks[2]);
    blocks[2].centres.push_back(nodes[8]);
  }
}

// Two walks take less time than one where a helper does one of them.
void take_in_crew(const MESH_GEOMETRY_TYPE& source, EnsightMesh& mesh, Blocks& blocks) {
  bool has_memory = true;
  CrewJob quads;
  quads.start([&] {
    try {
      take_elements(source, Taken::four_node_quads, blocks);
    } catch (const std::bad_alloc&) {
      has_memory = false;
    }
  });
  take_elements(source, Taken::others, blocks);
  find_extents(mesh);
  quads.finish();
  if (!has_memory) throw std::bad_alloc();
}

// The elements, with the extents of the nodes.
void take_blocks(const MESH_GEOMETRY_TYPE& source, EnsightMesh& mesh) {
  constexpr std::size_t fewest_shared = 200000;
  Blocks blocks{empty_block(shapes[0], source.triangle_count),
                empty_block(shapes[1], source.quad4_count),
                empty_block(shapes[2], source.quad9_count)};
  if (WORK_CREW().has_helpers() && source.corners.size() >= fewest_shared) {
    take_in_crew(source, mesh, blocks);
  } else {
    take_elements(source, Taken::all, blocks);
    find_extents(mesh);
  }
  for (ElementBlock& block : blocks) {
    if (!block.ids.empty()) mesh.blocks.push_back(std::move(block));
  }
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
  take_blocks(mesh, result);
  return result;
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace quillet
