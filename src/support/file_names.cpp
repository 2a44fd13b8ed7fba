#include "support/file_names.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "support/text.h"

namespace quillet {
namespace {

constexpr auto none = std::string_view::npos;

// Position of the first character after the folder.
std::size_t own_name_start(std::string_view name) {
  const auto separator = name.find_last_of("/\\");
  return separator == none ? 0 : separator + 1;
}

// Position of the dot of the extension, or the length of the name.
std::size_t extension_start(std::string_view name) {
  const auto dot = name.find_last_of('.');
  return dot == none || dot < own_name_start(name) ? name.size() : dot;
}

// Position of the "(" that the ")" at the end of the text closes; none when there is no such pair.
std::size_t closing_bracket_start(std::string_view text) {
  if (text.empty() || text.back() != ')') return none;
  int depth = 0;
  for (std::size_t i = text.size(); i-- > 0;) {
    if (text[i] == ')') ++depth;
    if (text[i] == '(' && --depth == 0) return i;
  }
  return none;
}

}  // namespace

std::string FILEEXT(std::string_view name) {
  name = TRIMF(name);
  return LOWERCASE(name.substr(extension_start(name)));
}

std::string FILENAME(std::string_view name) {
  const std::string path = FILENAMEPATH(name);
  return path.substr(own_name_start(path));
}

std::string FILENAMEPATH(std::string_view name) {
  name = TRIMF(name);
  return std::string(name.substr(0, extension_start(name)));
}

std::string FILEFOLDERPATH(std::string_view name) {
  return std::string(name.substr(0, own_name_start(name)));
}

std::string FILE_SUFFIX(std::string_view name) {
  const std::string own_name = FILENAME(name);
  const auto underscore = own_name.find_last_of('_');
  return underscore == std::string::npos ? std::string() : own_name.substr(underscore);
}

std::string FILENAMEPATHNO_(std::string_view name) {
  const std::string path = FILENAMEPATH(name);
  return path.substr(0, path.size() - FILE_SUFFIX(name).size());
}

BracketedName SPLIT_BRACKETS(std::string_view name) {
  std::string_view path = TRIMF(name).substr(0, extension_start(TRIMF(name)));
  const std::string extension(TRIMF(name).substr(path.size()));
  BracketedName split;
  while (true) {
    const auto bracket = closing_bracket_start(path);
    if (bracket == none) break;
    const std::string_view before = TRIMF(path.substr(0, bracket));
    if (before.size() <= own_name_start(path)) break;
    split.brackets.emplace(split.brackets.begin(), path.substr(before.size()));
    path = before;
  }
  split.name = std::string(path) + extension;
  return split;
}

std::string WITHOUT_BRACKETS(std::string_view name) {
  return SPLIT_BRACKETS(name).name;
}

bool IS_ABSOLUTE_NAME(std::string_view name) {
  const bool has_drive = name.size() >= 2 && name[1] == ':';
  return has_drive || (!name.empty() && (name[0] == '/' || name[0] == '\\'));
}

std::string SYSTEM_NAME(std::string_view name) {
  std::string result(name);
  if constexpr (std::filesystem::path::preferred_separator == '/') {
    std::replace(result.begin(), result.end(), '\\', '/');
  }
  return result;
}

bool SAME_FILE(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

bool SAME_PLACE(const std::string& a, const std::string& b) {
  std::error_code error;
  const auto place_of = [&](const std::string& name) {
    const auto path = std::filesystem::absolute(SYSTEM_NAME(name), error);
    const auto place = std::filesystem::weakly_canonical(path, error);
    return error ? path.lexically_normal() : place;
  };
  return place_of(a) == place_of(b) || SAME_FILE(a, b);
}

bool FILE_EXISTS(const std::string& name) {
  std::error_code error;
  const auto status = std::filesystem::status(name, error);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

}  // namespace quillet
