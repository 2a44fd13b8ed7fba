#include "mesh/node_kinds.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "support/console.h"

namespace quillet {
namespace {

bool is_known(std::int32_t kind) {
  return kind == 3 || kind == 4 || kind == 9;
}

void report_kind() {
  SAY("ERROR - Should not be here, cell is not e3t, e4q or e9q.  Contact " +
      std::string(support_email));
}

bool is_active(std::int8_t status) {
  return status == 1 || status == -1;
}

}  // namespace

void SET_NODE_KINDS(MESH_TYPE& mesh) {
  const NodeKind initial = mesh.fv_mesh ? fv_node : no_element_node;
  for (MESH_NODE_TYPE& node : mesh.nodes) node.kind = initial;
  if (mesh.fv_mesh) return;
  for (const MESH_ELEMENT_TYPE& element : mesh.elements) {
    if (!is_known(element.kind)) report_kind();
    MARK_NODES_OF(element, mesh.nodes);
  }
}

void MARK_NODES_OF_ACTIVE_CELLS(const MESH_TYPE& mesh, std::span<const std::int8_t> status,
                                std::vector<std::uint8_t>& counts) {
  counts.assign(mesh.nodes.size(), 0);
  const std::size_t cells = std::min(status.size(), mesh.elements.size());
  for (std::size_t i = 0; i < cells; ++i) {
    if (!is_active(status[i])) continue;
    const MESH_ELEMENT_TYPE& element = mesh.elements[i];
    const int nodes = NODE_COUNT_OF(element);
    for (int slot = 0; slot < nodes; ++slot) counts[element.nodes[slot] - 1] = 1;
  }
}

}  // namespace quillet
