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

bool is_active(std::int8_t status) {
  return status == 1 || status == -1;
}

}  // namespace

void REPORT_ELEMENT_KIND() {
  SAY("ERROR - Should not be here, cell is not e3t, e4q or e9q.  Contact " +
      std::string(support_email));
}

void SET_NODE_KINDS(MESH_TYPE& mesh) {
  const NodeKind initial = mesh.fv_mesh ? fv_node : no_element_node;
  for (MESH_NODE_TYPE& node : mesh.nodes) node.kind = initial;
  if (mesh.fv_mesh) return;
  for (const MESH_ELEMENT_TYPE& element : mesh.elements) {
    if (!is_known(element.kind)) REPORT_ELEMENT_KIND();
    MARK_NODES_OF(element, mesh.nodes);
  }
}

void MARK_NODES_OF_ACTIVE_CELLS(const MESH_GEOMETRY_TYPE& mesh, std::span<const std::int8_t> status,
                                std::vector<std::uint8_t>& counts) {
  counts.assign(mesh.z.size(), 0);
  const std::size_t cells = std::min(status.size(), mesh.corners.size());
  const auto mark = [&](const auto& nodes) {
    for (const std::int32_t node : nodes) {
      if (node != 0) counts[static_cast<std::size_t>(node) - 1] = 1;
    }
  };
  for (std::size_t i = 0; i < cells; ++i) {
    if (is_active(status[i])) mark(mesh.corners[i]);
  }
  for (std::size_t i = 0; i < std::min(cells, mesh.inner_nodes.size()); ++i) {
    if (is_active(status[i])) mark(mesh.inner_nodes[i]);
  }
}

}  // namespace quillet
