#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "mesh/mesh.h"

namespace quillet {

// Marks every node with its kind, by the elements in the order of their ids: a node that elements
// of different kinds share keeps the mark of the last. In a finite-volume mesh every node is "FV".
// Reports elements that are neither triangles nor quadrilaterals. Node slots in use hold node ids.
void SET_NODE_KINDS(MESH_TYPE& mesh);

// Sets `counts` to one value per node: 1 for every node, mid-side and centre nodes included, of at
// least one active element, else 0. An element is active when its status has the absolute value 1.
// `status` has one value per element.
void MARK_NODES_OF_ACTIVE_CELLS(const MESH_TYPE& mesh, std::span<const std::int8_t> status,
                                std::vector<std::uint8_t>& counts);

}  // namespace quillet
