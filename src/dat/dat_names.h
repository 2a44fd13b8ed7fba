// What the name of a .dat file tells: the type of its results, its mesh. Closing "(...)", which the
// program's own names end in, are no part of either.
#pragma once

#include <string>
#include <string_view>

#include "results/input_type.h"

namespace quillet {

// A file named run_V.dat is of type "_v": the suffix from the last "_", in lower case; so is
// run_V(range).dat. Without the mesh.
InputType TYPE_OF_DAT_INPUT(std::string_view file_name);

// The mesh that the name leads to: C:\run\res_h.dat has C:\run\res.2dm, and so has
// C:\run\res_h(range).dat.
std::string DEFAULT_MESH_OF_DAT(std::string_view file_name);

// Whether one of the closing "(...)" is the "(minmin)" of -min. A .dat file cannot hold negative
// times, so that minima are marked in it as maxima are: only the name tells.
bool HOLDS_MINIMA(std::string_view file_name);

}  // namespace quillet
