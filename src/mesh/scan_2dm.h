#pragma once

#include "mesh/mesh.h"
#include "support/input_unit.h"

namespace quillet {

// Scanning a .2dm file checks its header line and counts its cards, without reading their values.
// Each step is announced.

// Fills the form and the geo-referencing values, which keep what they held where the header line
// has too few. Ends the run when the first line does not begin with "MESH2D" or states
// geo-referencing values that cannot be read.
void SCAN_2DM_HEADER(const InputUnit& unit, MESH_SUMMARY_TYPE& mesh);

// Fills the counts, then FINISH_2DM_SCAN. Ends the run when there are more cards than a count can
// state.
void SCAN_2DM(const InputUnit& unit, MESH_SUMMARY_TYPE& mesh);

// Announces the counts and tells the resolution. Warns and waits when 4- and 9-node quadrilaterals
// stand together.
void FINISH_2DM_SCAN(MESH_SUMMARY_TYPE& mesh);

}  // namespace quillet
