#include "support/text.h"

#include <algorithm>

namespace quillet {
namespace {

constexpr std::string_view blanks_and_tabs = " \t";

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

int byte_of(char c) {
  return static_cast<unsigned char>(c);
}

std::string without(std::string_view text, std::string_view unwanted) {
  std::string kept;
  std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
               [&](char c) { return unwanted.find(c) == std::string_view::npos; });
  return kept;
}

// What ASAME compares: upper case, no quotes, no tabs, no surrounding blanks.
std::string comparable(std::string_view text) {
  return UPPERCASE(TRIM_BOTH(without(text, "\"'\t")));
}

}  // namespace

std::string UPPERCASE(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upper);
  return result;
}

std::string LOWERCASE(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}

std::string_view TRIMF(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view TRIM_BOTH(std::string_view text) {
  const auto first = text.find_first_not_of(blanks_and_tabs);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks_and_tabs) - first + 1);
}

bool BLANK(std::string_view text) {
  return TRIMF(text).empty();
}

bool ASAME(std::string_view a, std::string_view b) {
  return comparable(a) == comparable(b);
}

bool FLAGEXISTS(std::string_view examined, std::string_view key) {
  return UPPERCASE(TRIMF(examined)).find(UPPERCASE(TRIMF(key))) != std::string::npos;
}

std::string REMOVEQUOTES(std::string_view text) {
  const std::string bare = without(text, "\"");
  std::string_view name = TRIM_BOTH(bare);
  if (name.size() >= 2 && name.front() == '\'' && name.back() == '\'') {
    name = TRIM_BOTH(name.substr(1, name.size() - 2));
  }
  return std::string(name);
}

std::string SHOWN(std::string_view text) {
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_wide_control =
        text[i] == '\xC2' && i + 1 < text.size() && byte_of(text[i + 1]) / 0x20 == 4;
    const bool is_control = byte_of(text[i]) < ' ' || text[i] == '\x7F' || is_wide_control;
    shown += is_control ? '?' : text[i];
    if (is_wide_control) ++i;
  }
  return shown;
}

std::string QUOTED(std::string_view text) {
  return '"' + std::string(TRIMF(text)) + '"';
}

}  // namespace quillet
