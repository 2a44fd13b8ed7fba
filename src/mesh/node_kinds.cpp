#include "mesh/node_kinds.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "support/console.h"

namespace quillet {
namespace {

using NodeKind = std::array<char, 2>;

constexpr NodeKind triangle_corner{'T', ' '};
constexpr NodeKind quad_corner{'H', ' '};
constexpr NodeKind mid_side{'U', 'V'};
constexpr NodeKind centre{'C', ' '};
constexpr NodeKind fv_node{'F', 'V'};

void mark_nodes(const MESH_ELEMENT_TYPE& element, std::size_t first, std::size_t end, NodeKind kind,
                LargeArray<MESH_NODE_TYPE>& nodes) {
  for (std::size_t slot = first; slot < end; ++slot) {
    nodes[static_cast<std::size_t>(element.nodes[slot]) - 1].kind = kind;
  }
}

void mark_element(const MESH_ELEMENT_TYPE& element, LargeArray<MESH_NODE_TYPE>& nodes) {
  switch (element.kind) {
    case 3:
      return mark_nodes(element, 0, 3, triangle_corner, nodes);
    case 4:
      return mark_nodes(element, 0, 4, quad_corner, nodes);
    case 9:
      if (NODE_COUNT_OF(element) != 9) return;
      mark_nodes(element, 0, 4, quad_corner, nodes);
      mark_nodes(element, 4, 8, mid_side, nodes);
      return mark_nodes(element, 8, 9, centre, nodes);
    default:
      SAY("ERROR - Should not be here, cell is not e3t, e4q or e9q.  Contact " +
          std::string(support_email));
  }
}

bool is_active(std::int8_t status) {
  return status == 1 || status == -1;
}

}  // namespace

void SET_NODE_KINDS(MESH_TYPE& mesh) {
  if (mesh.fv_mesh) {
    for (MESH_NODE_TYPE& node : mesh.nodes) node.kind = fv_node;
  } else {
    for (const MESH_ELEMENT_TYPE& element : mesh.elements) mark_element(element, mesh.nodes);
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
