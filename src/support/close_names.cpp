#include "support/close_names.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

#include "support/file_names.h"
#include "support/text.h"

namespace quillet {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t most_names = 3;
// A folder of any size is looked through without a wait.
constexpr int most_entries = 100'000;
// No file system has longer names.
constexpr std::size_t longest_name = 255;

// In a short name two other characters are another name.
std::size_t allowed_distance(const std::string& file_name) {
  return FILENAME(file_name).size() < 6 ? 1 : 2;
}

// A name that would break up the console is not shown.
bool is_shown_whole(std::string_view name) {
  return std::none_of(name.begin(), name.end(),
                      [](unsigned char c) { return c < ' ' || c == 0x7F; });
}

// The nearest names met so far, in alphabetical order.
class Nearest {
 public:
  explicit Nearest(std::size_t most) : distance(most) {}

  void consider(const std::string& name, std::size_t its_distance) {
    if (its_distance > distance) return;
    if (its_distance < distance) names.clear();
    distance = its_distance;
    names.insert(std::upper_bound(names.begin(), names.end(), name), name);
    if (names.size() > most_names) names.pop_back();
  }

  std::vector<std::string> names;
  std::size_t distance;
};

std::vector<std::string> close_names(const std::string& file_name) {
  const std::string folder = FILEFOLDERPATH(file_name);
  const std::string wanted(TRIMF(std::string_view(file_name).substr(folder.size())));
  Nearest nearest(allowed_distance(wanted));
  std::error_code error;
  fs::directory_iterator entry(folder.empty() ? "." : folder, error);
  for (int i = 0; !error && entry != fs::directory_iterator() && i < most_entries; ++i) {
    const std::string name = entry->path().filename().string();
    const std::size_t distance = EDIT_DISTANCE(wanted, name, nearest.distance);
    if (distance <= nearest.distance && is_shown_whole(name) && FILE_EXISTS(folder + name)) {
      nearest.consider(name, distance);
    }
    entry.increment(error);
  }
  for (std::string& name : nearest.names) name.insert(0, folder);
  return nearest.names;
}

}  // namespace

std::size_t EDIT_DISTANCE(std::string_view a, std::string_view b, std::size_t most) {
  const std::size_t difference = std::max(a.size(), b.size()) - std::min(a.size(), b.size());
  if (difference > most || std::max(a.size(), b.size()) > longest_name) return most + 1;
  const std::string from = LOWERCASE(a);
  const std::string to = LOWERCASE(b);
  // Rows of the table of distances between beginnings of both.
  std::vector<std::size_t> two_above(to.size() + 1);
  std::vector<std::size_t> above(to.size() + 1);
  std::vector<std::size_t> row(to.size() + 1);
  for (std::size_t j = 0; j <= to.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::swap(two_above, above);
    std::swap(above, row);
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t changed = above[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row[j] = std::min({changed, above[j] + 1, row[j - 1] + 1});
      const bool is_swapped =
          i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (is_swapped) row[j] = std::min(row[j], two_above[j - 2] + 1);
    }
  }
  return std::min(row[to.size()], most + 1);
}

std::string CLOSE_NAMES_QUESTION(const std::string& file_name) {
  if (FILE_EXISTS(file_name)) return "";
  const std::vector<std::string> names = close_names(file_name);
  if (names.empty()) return "";
  std::string question = "Did you mean " + QUOTED(names.front());
  for (std::size_t i = 1; i < names.size(); ++i) question += " or " + QUOTED(names[i]);
  return question + "?";
}

}  // namespace quillet
