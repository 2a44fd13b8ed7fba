// What kind of quantity an input holds and which mesh belongs to it, told from its name or from the
// type asked for.
#pragma once

#include <string>
#include <string_view>

namespace quillet {

struct InputType {
  std::string type;             // "_h", "_v", "WI10"; "XX" when the name tells nothing
  bool is_water_level = false;  // values are levels: dry nodes carry no meaning
  std::string mesh_file;        // the .2dm file of this input
};

// A file named run_V.dat is of type "_v": the suffix from the last "_", in lower case.
InputType TYPE_OF_DAT_INPUT(std::string_view file_name);

// For XMDF inputs the type asked for decides: "_V" for -typeV; a code of four characters stands
// alone ("WI10").
InputType TYPE_OF_XMDF_INPUT(std::string_view type_code);

// The mesh that an input's own name leads to: C:\run\res_h.dat has C:\run\res.2dm, and
// C:\run\res.xmdf has the same.
std::string DEFAULT_MESH_OF_DAT(std::string_view file_name);
std::string DEFAULT_MESH_OF_XMDF(std::string_view file_name);

// The water levels that belong to an input: its name with the type suffix replaced by "_h.dat". An
// input whose name has no suffix gets one.
std::string WATER_LEVEL_FILE(std::string_view file_name);

// True when both types are the same quantity; case and the leading "_" do not matter.
bool SAME_TYPE(const InputType& a, const InputType& b);

// Prints the type (a warning when the name told nothing) and the mesh.
void REPORT_INPUT_TYPE(const InputType& input);

}  // namespace quillet
