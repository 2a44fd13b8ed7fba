#include "mesh/load_mesh.h"

#include <cstddef>
#include <new>
#include <utility>

#include "mesh/mesh_messages.h"
#include "mesh/read_2dm.h"
#include "mesh/scan_2dm.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/input_unit.h"

namespace quillet {
namespace {

// No card of a node or an element is shorter, so a file of this size can hold so many.
constexpr std::int64_t shortest_card = 10;

bool has_room(MESH_TYPE& mesh) try {
  mesh.nodes.reserve(static_cast<std::size_t>(mesh.node_count));
  mesh.elements.reserve(static_cast<std::size_t>(mesh.element_count));
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

// Reads a mesh of these counts without counting its cards first. False, with `mesh` left alone,
// when it has others, or anything in it is out of the ordinary.
bool load_at_once(const InputUnit& unit, std::int32_t nodes, std::int32_t cells, MESH_TYPE& mesh) {
  if ((std::int64_t{nodes} + cells) * shortest_card > unit.size()) return false;
  MESH_TYPE loaded = mesh;
  loaded.node_count = nodes;
  loaded.element_count = cells;
  if (!has_room(loaded) || !READ_2DM_AT_ONCE(unit, loaded)) return false;
  mesh = std::move(loaded);
  return true;
}

}  // namespace

void LOAD_MESH(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
               std::optional<std::int32_t> expected_cells, MESH_TYPE& mesh, ValuesPer values) {
  const InputUnit unit(file_name);
  mesh = MESH_TYPE{};
  SCAN_2DM_HEADER(unit, mesh);
  const bool may_be_per_element = values == ValuesPer::node_or_fv_element && mesh.fv_mesh;
  const bool nodes_are_sure = !may_be_per_element || expected_nodes != expected_cells;
  if (expected_nodes && expected_cells && nodes_are_sure &&
      load_at_once(unit, *expected_nodes, *expected_cells, mesh)) {
    return;
  }
  SCAN_2DM(unit, mesh);
  if (mesh.element_count != expected_cells.value_or(mesh.element_count)) {
    FAIL_ON_CELL_COUNT(*expected_cells);
  }
  const bool is_per_element = may_be_per_element && mesh.element_count == expected_nodes;
  if (!is_per_element && mesh.node_count != expected_nodes.value_or(mesh.node_count)) {
    FAIL_ON_NODE_COUNT(*expected_nodes);
  }
  if (!has_room(mesh)) FAIL_ALLOCATION();
  READ_2DM(unit, mesh);
}

}  // namespace quillet
