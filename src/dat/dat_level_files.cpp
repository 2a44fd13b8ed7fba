#include "dat/dat_level_files.h"

#include <algorithm>

#include "support/file_names.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

// "(trim0.5)" and its like: the output times of the data stay what they were.
bool only_changes_values(std::string_view bracket) {
  const std::string text = LOWERCASE(TRIM_BOTH(bracket));
  const std::string_view inside = std::string_view(text).substr(1, text.size() - 2);
  if (inside == "toi") return true;
  const auto is_value_of = [&](std::string_view operation) {
    return inside.starts_with(operation) && READ_REAL(inside.substr(operation.size())).has_value();
  };
  return is_value_of("trim") || is_value_of("dur");
}

bool is_extreme(std::string_view bracket) {
  return ASAME(TRIM_BOTH(bracket), "(maxmax)") || ASAME(TRIM_BOTH(bracket), "(minmin)");
}

// Without the type, and without the mark of velocity angles behind the type that they had.
std::string without_type(std::string name) {
  if (LOWERCASE(FILE_SUFFIX(name)) == "_va") name = FILENAMEPATHNO_(name) + FILEEXT(name);
  return FILENAMEPATHNO_(name);
}

}  // namespace

LevelFiles LEVEL_FILES(std::string_view data_file) {
  const BracketedName split = SPLIT_BRACKETS(data_file);
  const std::string levels = without_type(split.name) + "_h";
  std::string kept;
  for (const std::string& bracket : split.brackets) {
    if (!only_changes_values(bracket)) kept += bracket;
  }
  return {levels + kept + ".dat", levels + ".dat",
          std::any_of(split.brackets.begin(), split.brackets.end(), is_extreme)};
}

}  // namespace quillet
