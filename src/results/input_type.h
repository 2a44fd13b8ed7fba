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

constexpr std::string_view unknown_type = "XX";
constexpr std::string_view water_level_type = "_h";
constexpr std::string_view mesh_extension = ".2dm";

// True when both types are the same quantity; case and the leading "_" do not matter.
bool SAME_TYPE(const InputType& a, const InputType& b);

// Prints the type (a warning when the name told nothing) and the mesh.
void REPORT_INPUT_TYPE(const InputType& input);

}  // namespace quillet
