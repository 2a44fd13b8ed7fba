// Names of variable files taken apart: "run1_Depth.0007".
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillet {

struct NumberedName {
  std::string base;
  std::size_t number = 0;
};

// Nothing for a name that does not end in a point and four digits behind something.
inline std::optional<NumberedName> SPLIT_NUMBERED_NAME(std::string_view name) {
  constexpr std::size_t ending = 5;
  if (name.size() <= ending || name[name.size() - ending] != '.') return std::nullopt;
  NumberedName parts{std::string(name.substr(0, name.size() - ending)), 0};
  for (const char c : name.substr(name.size() - ending + 1)) {
    if (c < '0' || c > '9') return std::nullopt;
    parts.number = parts.number * 10 + static_cast<std::size_t>(c - '0');
  }
  return parts;
}

}  // namespace quillet
