// What the name of a .dat file tells: the type of its results, its mesh, its water levels.
#pragma once

#include <string>
#include <string_view>

#include "results/input_type.h"

namespace quillet {

// A file named run_V.dat is of type "_v": the suffix from the last "_", in lower case. Without the
// mesh.
InputType TYPE_OF_DAT_INPUT(std::string_view file_name);

// The mesh that the name leads to: C:\run\res_h.dat has C:\run\res.2dm.
std::string DEFAULT_MESH_OF_DAT(std::string_view file_name);

// The water levels that belong to a file: its name with the type suffix replaced by "_h.dat". A
// name without a suffix gets one.
std::string WATER_LEVEL_FILE(std::string_view file_name);

}  // namespace quillet
