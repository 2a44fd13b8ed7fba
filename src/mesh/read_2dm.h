#pragma once

#include "mesh/mesh.h"
#include "support/input_unit.h"

namespace quillet {

// Second pass over a .2dm file, after SCAN_2DM: fills nodes, elements, extents, node kinds
// and mesh parts, and announces each step. The node and element tables have room for the scanned
// counts and hold nothing yet.
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

// Both passes in one, after SCAN_2DM_HEADER, for the file of most runs: `mesh` states how many
// nodes and elements are expected and has room for them. Does and says what FINISH_2DM_SCAN and
// READ_2DM would.
//
// False, with nothing said and the tables in disorder, when the file has other counts or a line
// that is not plainly written or cannot be used: the two passes then tell what there is to be said.
bool READ_2DM_AT_ONCE(const InputUnit& unit, MESH_TYPE& mesh);

}  // namespace quillet
