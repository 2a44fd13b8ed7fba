#include "xmdf/xmdf_names.h"

#include "support/file_names.h"
#include "support/text.h"

namespace quillet {

InputType TYPE_OF_XMDF_INPUT(std::string_view type_code) {
  constexpr std::size_t full_code_length = 4;
  InputType input;
  const std::string_view code = TRIMF(type_code);
  if (code.size() < full_code_length) input.type = '_';
  input.type += code;
  input.is_water_level = ASAME(input.type, water_level_type);
  return input;
}

std::string DEFAULT_MESH_OF_XMDF(std::string_view file_name) {
  const std::string own = FILENAMEPATH(file_name) + std::string(mesh_extension);
  if (FILE_EXISTS(own)) return own;
  return FILENAMEPATH(WITHOUT_BRACKETS(file_name)) + std::string(mesh_extension);
}

}  // namespace quillet
