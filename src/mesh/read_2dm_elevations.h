#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "support/input_unit.h"
#include "support/large_array.h"

namespace quillet {

// Elevation of nodes that the mesh file does not state.
constexpr float no_elevation = -99999.0F;

using CornerArrays = std::array<LargeArray<std::int32_t>, 4>;

// Reads from a .2dm file nothing but the elevations of the nodes (m, as they stand: the z offset is
// not applied) and the corners of triangles and 4-node quadrilaterals, in the order of the mesh
// record (first, fourth, third, second of the card). No header line is needed.
//
// The arrays get one value per node and per element; what the file does not state is no_elevation,
// and 0 for a corner: for the fourth corner of a triangle, for all four of a 9-node quadrilateral.
// When the element count is not known, element cards are passed over and the corners stay empty.
//
// Ends the run at a line whose values cannot be read or are too few, at a node id above the count,
// at an element id or a corner outside the counts, and at an id that stands twice. Warns and waits
// when nodes are missing.
void READ_2DM_ELEVATIONS(const InputUnit& unit, LargeArray<float>& elevations,
                         std::int32_t node_count, CornerArrays& corners,
                         std::optional<std::int32_t> element_count);

}  // namespace quillet
