#include "results/input_type.h"

#include "support/console.h"
#include "support/file_names.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::string_view unknown_type = "XX";
constexpr std::string_view water_level_type = "_h";
constexpr std::string_view mesh_extension = ".2dm";

std::string_view without_underscore(std::string_view type) {
  if (!type.empty() && type.front() == '_') type.remove_prefix(1);
  return type;
}

}  // namespace

InputType TYPE_OF_DAT_INPUT(std::string_view file_name) {
  InputType input;
  input.type = LOWERCASE(FILE_SUFFIX(file_name));
  if (input.type.size() <= 1) input.type = unknown_type;
  input.is_water_level = input.type == water_level_type;
  return input;
}

InputType TYPE_OF_XMDF_INPUT(std::string_view type_code) {
  constexpr std::size_t full_code_length = 4;
  InputType input;
  const std::string_view code = TRIMF(type_code);
  if (code.size() < full_code_length) input.type = '_';
  input.type += code;
  input.is_water_level = ASAME(input.type, water_level_type);
  return input;
}

std::string DEFAULT_MESH_OF_DAT(std::string_view file_name) {
  return FILENAMEPATHNO_(file_name) + std::string(mesh_extension);
}

std::string DEFAULT_MESH_OF_XMDF(std::string_view file_name) {
  return FILENAMEPATH(file_name) + std::string(mesh_extension);
}

std::string WATER_LEVEL_FILE(std::string_view file_name) {
  return FILENAMEPATHNO_(file_name) + "_h.dat";
}

bool SAME_TYPE(const InputType& a, const InputType& b) {
  return LOWERCASE(without_underscore(a.type)) == LOWERCASE(without_underscore(b.type));
}

void REPORT_INPUT_TYPE(const InputType& input) {
  if (input.type == unknown_type) {
    SAY_APART("WARNING - Could not identify data type - this may effect results");
  }
  SAY_APART("SMS data type identified as: " + QUOTED(LOWERCASE(input.type)));
  SAY("2dm filename: " + QUOTED(input.mesh_file));
}

}  // namespace quillet
