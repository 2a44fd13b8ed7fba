// What of a file a trial opens.
#pragma once

#include <string>
#include <vector>

namespace quillet {

// The first scalar and the first vector dataset, which tell the sizes of the file, and those whose
// paths hold one of the words, in any case; without words all. A word has neither '|' nor '"', and
// does not begin with '/'.
struct XfTrialScope {
  std::vector<std::string> words;

  bool is_all() const { return words.empty(); }
  bool holds(const std::string& path) const;
};

}  // namespace quillet
