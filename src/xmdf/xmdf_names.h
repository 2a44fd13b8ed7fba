// What the name of an XMDF file and the type asked for tell.
#pragma once

#include <string>
#include <string_view>

#include "results/input_type.h"

namespace quillet {

// The type asked for decides: "_V" for -typeV; a code of four characters stands alone ("WI10").
// Without the mesh.
InputType TYPE_OF_XMDF_INPUT(std::string_view type_code);

// The mesh that the name leads to: C:\run\res.xmdf has C:\run\res.2dm, and so has
// C:\run\res(maxmax).xmdf unless there is a mesh of its own name.
std::string DEFAULT_MESH_OF_XMDF(std::string_view file_name);

}  // namespace quillet
