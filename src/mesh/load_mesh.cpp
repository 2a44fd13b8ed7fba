#include "mesh/load_mesh.h"

#include <cstddef>
#include <new>

#include "mesh/mesh_messages.h"
#include "mesh/read_2dm.h"
#include "mesh/scan_2dm.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/input_unit.h"

namespace quillet {
namespace {

void make_room(MESH_TYPE& mesh) {
  mesh.nodes.reserve(static_cast<std::size_t>(mesh.node_count));
  mesh.elements.reserve(static_cast<std::size_t>(mesh.element_count));
}

void make_room(MESH_GEOMETRY_TYPE& mesh) {
  const auto nodes = static_cast<std::size_t>(mesh.node_count);
  mesh.x.reserve(nodes);
  mesh.y.reserve(nodes);
  mesh.z.reserve(nodes);
  mesh.corners.reserve(static_cast<std::size_t>(mesh.element_count));
}

template <typename Mesh>
bool has_room(Mesh& mesh) try {
  make_room(mesh);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

// A mesh that holds what the header line tells, and nothing else.
template <typename Mesh>
Mesh with_header_of(const Mesh& mesh) {
  Mesh result;
  result.fv_mesh = mesh.fv_mesh;
  result.pre_2005_format = mesh.pre_2005_format;
  result.geo_referencing = mesh.geo_referencing;
  result.z_offset = mesh.z_offset;
  return result;
}

// The two passes of a mesh that cannot be read, or that is not the expected one.
template <typename Mesh>
void load_in_two_passes(const InputUnit& unit, const EXPECTED_COUNTS_TYPE& expected, Mesh& mesh) {
  SCAN_2DM(unit, mesh);
  const MESH_COUNTS_TYPE found{unit.name(), mesh.node_count, mesh.element_count};
  if (!expected.has_cells_of(mesh)) FAIL_ON_CELL_COUNT(found, *expected.cells);
  if (!expected.has_nodes_of(mesh)) FAIL_ON_NODE_COUNT(found, *expected.nodes);
  if (!has_room(mesh)) FAIL_ALLOCATION();
  READ_2DM(unit, mesh);
}

template <typename Mesh>
void load(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
          std::optional<std::int32_t> expected_cells, Mesh& mesh, ValuesPer values) {
  const InputUnit unit(file_name);
  mesh = Mesh{};
  SCAN_2DM_HEADER(unit, mesh);
  const bool may_be_per_element = values == ValuesPer::node_or_fv_element && mesh.fv_mesh;
  const EXPECTED_COUNTS_TYPE expected{expected_nodes, expected_cells, may_be_per_element};
  if (READ_2DM_AT_ONCE(unit, expected, mesh)) return;
  mesh = with_header_of(mesh);
  load_in_two_passes(unit, expected, mesh);
}

}  // namespace

void LOAD_MESH(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
               std::optional<std::int32_t> expected_cells, MESH_TYPE& mesh, ValuesPer values) {
  load(file_name, expected_nodes, expected_cells, mesh, values);
}

void LOAD_MESH(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
               std::optional<std::int32_t> expected_cells, MESH_GEOMETRY_TYPE& mesh,
               ValuesPer values) {
  load(file_name, expected_nodes, expected_cells, mesh, values);
}

}  // namespace quillet
