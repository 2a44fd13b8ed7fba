#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

namespace quillet {

// Which ids have been met. The memory follows the number of ids, not how large they are, as long as
// `likely_most` is no more than there may be.
class SeenIds {
 public:
  explicit SeenIds(std::size_t likely_most) : ordinary(likely_most + 1) {}

  // False when the id has been met before. Ids are not negative.
  bool meet(std::int32_t id) {
    const auto index = static_cast<std::size_t>(id);
    if (index >= ordinary.size()) return large.insert(id).second;
    const bool is_new = !ordinary[index];
    ordinary[index] = true;
    return is_new;
  }

 private:
  std::vector<bool> ordinary;
  std::unordered_set<std::int32_t> large;
};

}  // namespace quillet
