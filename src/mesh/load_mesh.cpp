#include "mesh/load_mesh.h"

#include <cstddef>
#include <new>
#include <vector>

#include "mesh/mesh_messages.h"
#include "mesh/read_2dm.h"
#include "mesh/scan_2dm.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/input_unit.h"

namespace quillet {
namespace {

void make_room(MESH_TYPE& mesh) try {
  mesh.nodes.reserve(static_cast<std::size_t>(mesh.node_count));
  mesh.elements.reserve(static_cast<std::size_t>(mesh.element_count));
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace

void LOAD_MESH(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
               std::optional<std::int32_t> expected_cells, MESH_TYPE& mesh) {
  const InputUnit unit(file_name);
  mesh = MESH_TYPE{};
  SCAN_2DM(unit, mesh);
  if (mesh.element_count != expected_cells.value_or(mesh.element_count)) {
    FAIL_ON_CELL_COUNT(*expected_cells);
  }
  if (mesh.node_count != expected_nodes.value_or(mesh.node_count)) {
    FAIL_ON_NODE_COUNT(*expected_nodes);
  }
  make_room(mesh);
  READ_2DM(unit, mesh);
}

}  // namespace quillet
