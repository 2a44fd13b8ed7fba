#include "ensight/ensight_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "support/console.h"
#include "support/file_names.h"
#include "support/text.h"

namespace quillet {
namespace {

// File systems end names at 255 bytes, and "_binary.geo.log" and a temporary ending follow the
// base.
constexpr std::size_t longest_base = 200;
constexpr std::size_t longest_description = 79;

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

bool is_fit(char c) {
  return is_digit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '.';
}

bool is_beyond_ascii(char c) {
  return static_cast<unsigned char>(c) >= 0x80;
}

bool is_control(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

// Of a character of several bytes in UTF-8, all but the first.
bool continues_character(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

bool has_dropped_extension(std::string_view name) {
  constexpr std::array<std::string_view, 4> dropped{".dat", ".xmdf", ".txt", ".case"};
  return std::find(dropped.begin(), dropped.end(), FILEEXT(name)) != dropped.end();
}

}  // namespace

std::string ENSIGHT_FILE_NAME(std::string_view name) {
  std::string result;
  for (const char c : name) {
    if (is_beyond_ascii(c)) {
      result += fmt::format("{:02X}", static_cast<unsigned char>(c));
    } else {
      result += is_fit(c) || c == '-' ? c : '_';
    }
  }
  return result;
}

std::string ENSIGHT_VARIABLE_NAME(std::string_view name) {
  std::string fit(TRIM_BOTH(name));
  std::replace_if(
      fit.begin(), fit.end(), [](char c) { return !is_fit(c); }, '_');
  return !fit.empty() && is_digit(fit.front()) ? "d" + fit : fit;
}

std::string ENSIGHT_DESCRIPTION(std::string_view text) {
  std::string line(TRIM_BOTH(text));
  std::replace_if(line.begin(), line.end(), is_control, '_');
  if (!line.empty() && line.front() == '#') line.front() = '_';
  if (line.size() <= longest_description) return line;
  std::size_t size = longest_description;
  while (size > 0 && continues_character(line[size])) --size;
  line.resize(size);
  return line;
}

std::string ENSIGHT_BASE(std::string_view base_file_name) {
  std::string base = SYSTEM_NAME(TRIMF(base_file_name));
  while (has_dropped_extension(base)) base = FILENAMEPATH(base);
  return FILEFOLDERPATH(base) + ENSIGHT_FILE_NAME(NAME_IN_CASE_FILE(base)).substr(0, longest_base);
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

std::string DistinctNames::take(const std::string& name, std::size_t longest) {
  std::string distinct = name.substr(0, longest);
  for (int number = 2; !taken.insert(LOWERCASE(distinct)).second; ++number) {
    const std::string ending = fmt::format("_{}", number);
    distinct = name.substr(0, longest - ending.size()) + ending;
  }
  return distinct;
}

}  // namespace quillet
