#include "dat/dat_names.h"

#include "support/file_names.h"
#include "support/text.h"

namespace quillet {

InputType TYPE_OF_DAT_INPUT(std::string_view file_name) {
  InputType input;
  input.type = LOWERCASE(FILE_SUFFIX(file_name));
  if (input.type.size() <= 1) input.type = unknown_type;
  input.is_water_level = input.type == water_level_type;
  return input;
}

std::string DEFAULT_MESH_OF_DAT(std::string_view file_name) {
  return FILENAMEPATHNO_(file_name) + std::string(mesh_extension);
}

std::string WATER_LEVEL_FILE(std::string_view file_name) {
  return FILENAMEPATHNO_(file_name) + "_h.dat";
}

}  // namespace quillet
