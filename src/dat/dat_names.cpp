#include "dat/dat_names.h"

#include <algorithm>
#include <string>

#include "support/file_names.h"
#include "support/text.h"

namespace quillet {

InputType TYPE_OF_DAT_INPUT(std::string_view file_name) {
  InputType input;
  input.type = LOWERCASE(FILE_SUFFIX(WITHOUT_BRACKETS(file_name)));
  if (input.type.size() <= 1) input.type = unknown_type;
  input.is_water_level = input.type == water_level_type;
  return input;
}

std::string DEFAULT_MESH_OF_DAT(std::string_view file_name) {
  return FILENAMEPATHNO_(WITHOUT_BRACKETS(file_name)) + std::string(mesh_extension);
}

bool HOLDS_MINIMA(std::string_view file_name) {
  const auto brackets = SPLIT_BRACKETS(file_name).brackets;
  return std::any_of(brackets.begin(), brackets.end(), [](const std::string& bracket) {
    return ASAME(TRIM_BOTH(bracket), "(minmin)");
  });
}

}  // namespace quillet
