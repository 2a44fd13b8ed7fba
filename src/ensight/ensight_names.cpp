#include "ensight/ensight_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "support/console.h"
#include "support/file_names.h"
#include "support/text.h"

namespace quillet {
namespace {

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

bool is_unfit(char c) {
  return (c >= 0 && c <= ' ') || c == '\x7F' || c == '*';
}

bool begins_with_number(std::string_view name) {
  if (!name.empty() && (name[0] == '-' || name[0] == '+')) name.remove_prefix(1);
  return !name.empty() && is_digit(name[0]);
}

bool has_dropped_extension(std::string_view name) {
  constexpr std::array<std::string_view, 4> dropped{".dat", ".xmdf", ".txt", ".case"};
  return std::find(dropped.begin(), dropped.end(), FILEEXT(name)) != dropped.end();
}

}  // namespace

std::string ENSIGHT_FILE_NAME(std::string_view name) {
  std::string result(name);
  std::replace_if(result.begin(), result.end(), is_unfit, '_');
  return result;
}

std::string ENSIGHT_VARIABLE_NAME(std::string_view name) {
  const std::string fit = ENSIGHT_FILE_NAME(TRIM_BOTH(name));
  return begins_with_number(fit) ? "d" + fit : fit;
}

std::string ENSIGHT_BASE(std::string_view base_file_name) {
  std::string base = SYSTEM_NAME(TRIMF(base_file_name));
  while (has_dropped_extension(base)) base = FILENAMEPATH(base);
  return FILEFOLDERPATH(base) + ENSIGHT_FILE_NAME(NAME_IN_CASE_FILE(base));
}

std::string NAME_IN_CASE_FILE(std::string_view file_name) {
  return std::string(file_name.substr(FILEFOLDERPATH(file_name).size()));
}

std::string ENSIGHT_NUMBER_SUFFIX(std::string_view base, std::int64_t number) {
  if (number > largest_ensight_number) {
    SAY("ERROR - Maximum of 10,000 outputs per ensight dataset.");
    return "";
  }
  return fmt::format("{}.{:04}", TRIMF(base), number);
}

std::string DistinctNames::take(const std::string& name) {
  std::string distinct = name;
  for (int number = 2; !taken.insert(LOWERCASE(distinct)).second; ++number) {
    distinct = fmt::format("{}_{}", name, number);
  }
  return distinct;
}

}  // namespace quillet
