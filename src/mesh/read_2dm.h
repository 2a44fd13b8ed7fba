#pragma once

#include <cstdint>
#include <optional>

#include "mesh/mesh.h"
#include "mesh/mesh_geometry.h"
#include "support/input_unit.h"

namespace quillet {

// Second pass over a .2dm file, after SCAN_2DM: fills nodes, elements, extents, node kinds
// and mesh parts, and announces each step. The tables hold nothing yet and have room for the
// scanned counts.
//
// Ends the run at a line whose values cannot be read or are too few, at an id or a node of an
// element outside its table, at an id that stands twice, and when the file holds other numbers of
// cards than were scanned. So every node slot that is used holds a node id, and every node has been
// read.
//
// A 9-node card in a form without it is reported and not read; it turns the element read before it
// into one of kind 9, and leaves an element in the table that has not been read (see
// NODE_COUNT_OF).
void READ_2DM(const InputUnit& unit, MESH_TYPE& mesh);
// The same, keeping less.
void READ_2DM(const InputUnit& unit, MESH_GEOMETRY_TYPE& mesh);

// The counts of the results, where they are known.
struct EXPECTED_COUNTS_TYPE {
  std::optional<std::int32_t> nodes;
  std::optional<std::int32_t> cells;
  bool may_be_per_element = false;  // `nodes` may be the number of elements as well

  bool has_cells_of(const MESH_SUMMARY_TYPE& mesh) const {
    return mesh.element_count == cells.value_or(mesh.element_count);
  }
  bool has_nodes_of(const MESH_SUMMARY_TYPE& mesh) const {
    return mesh.node_count == nodes.value_or(mesh.node_count) ||
           (may_be_per_element && mesh.element_count == nodes);
  }
};

// Both passes in one, after SCAN_2DM_HEADER: does and says what SCAN_2DM and READ_2DM would. The
// tables grow as the cards come, up to what a file of this size can hold.
//
// False, with nothing said and the tables in disorder, when the counts are not the expected ones,
// when READ_2DM would end the run, or when memory does not suffice: the two passes then tell what
// there is to be said.
bool READ_2DM_AT_ONCE(const InputUnit& unit, const EXPECTED_COUNTS_TYPE& expected, MESH_TYPE& mesh);
bool READ_2DM_AT_ONCE(const InputUnit& unit, const EXPECTED_COUNTS_TYPE& expected,
                      MESH_GEOMETRY_TYPE& mesh);

}  // namespace quillet
