#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/mesh.h"
#include "mesh/mesh_geometry.h"

namespace quillet {

using NodeKind = std::array<char, 2>;
constexpr NodeKind no_element_node{' ', ' '};
constexpr NodeKind triangle_corner{'T', ' '};
constexpr NodeKind quad_corner{'H', ' '};
constexpr NodeKind mid_side_node{'U', 'V'};
constexpr NodeKind centre_node{'C', ' '};
constexpr NodeKind fv_node{'F', 'V'};

// Marks the nodes of one element: nothing where its kind is unknown, or is 9 without nine nodes.
inline void MARK_NODES_OF(const MESH_ELEMENT_TYPE& element, ZeroedTable<MESH_NODE_TYPE>& nodes) {
  const auto mark = [&](int first, int end, NodeKind kind) {
    for (int slot = first; slot < end; ++slot) nodes[element.nodes[slot] - 1].kind = kind;
  };
  if (element.kind == 3) return mark(0, 3, triangle_corner);
  const bool has_nine = element.kind == 9 && NODE_COUNT_OF(element.nodes) == 9;
  if (element.kind != 4 && !has_nine) return;
  mark(0, 4, quad_corner);
  if (!has_nine) return;
  mark(4, 8, mid_side_node);
  mark(8, 9, centre_node);
}

// Marks every node with its kind, by the elements in the order of their ids: a node that elements
// of different kinds share keeps the mark of the last. In a finite-volume mesh every node is "FV".
// Reports elements that are neither triangles nor quadrilaterals. Node slots in use hold node ids.
void SET_NODE_KINDS(MESH_TYPE& mesh);

// The line about an element that is neither triangle nor quadrilateral.
void REPORT_ELEMENT_KIND();

// Sets `counts` to one value per node: 1 for every node, mid-side and centre nodes included, of at
// least one active element, else 0. An element is active when its status has the absolute value 1.
// `status` has one value per element.
void MARK_NODES_OF_ACTIVE_CELLS(const MESH_GEOMETRY_TYPE& mesh, std::span<const std::int8_t> status,
                                std::vector<std::uint8_t>& counts);

}  // namespace quillet
