#pragma once

#include <string>
#include <vector>

#include "flood_mesh.h"
#include "model_options.h"

namespace quillet::example {

// Writes a .2dm file, one card per line:
//   ND id x y z                      and in the full form: elevation flag, three reals
//   E3T id 3 nodes material          and in the full and pre-2005 forms: two integers (row, column)
//   E4Q id 4 nodes material          and in the full form: an 8-bit integer, for E3T also a
//   E9Q id 9 nodes material          2-character code
// Triangles and 4-node quads run clockwise, since readers turn them round; 9-node quads, which
// readers leave, run counter-clockwise, corner and mid-side in turn, then the centre.
// `bed` has one elevation per node (m).
void write_mesh(const std::string& path, const FLOOD_MESH_TYPE& mesh, const std::vector<float>& bed,
                MeshForm form);

}  // namespace quillet::example
