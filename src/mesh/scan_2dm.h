#pragma once

#include "mesh/mesh.h"
#include "support/input_unit.h"

namespace quillet {

// First pass over a .2dm file: checks the header line and counts the cards, without reading their
// values. Fills the counts, the form and the geo-referencing values, which keep what they held
// where the header line has too few; announces each step.
//
// Ends the run when the first line does not begin with "MESH2D" or states geo-referencing values
// that cannot be read. Warns and waits when 4- and 9-node quadrilaterals stand together.
void SCAN_2DM(const InputUnit& unit, MESH_TYPE& mesh);

}  // namespace quillet
