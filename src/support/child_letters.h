// What a child and its parent say to each other: one letter at a time. For the implementations of
// system_child.h only.
#pragma once

#include <string_view>

namespace quillet {

constexpr char child_started = 's';
constexpr char child_progressed = 'p';
constexpr char child_done = 'd';

inline bool IS_DONE(std::string_view letters) {
  return letters.find(child_done) != std::string_view::npos;
}

}  // namespace quillet
