#include "ensight/older_export.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "ensight/numbered_names.h"
#include "support/file_names.h"

namespace quillet {
namespace {

namespace fs = std::filesystem;

// The lines that matter stand before the output times.
constexpr std::size_t longest_head = std::size_t{1} << 20;

std::string head_of(const std::string& file_name) {
  std::error_code error;
  if (fs::status(file_name, error).type() != fs::file_type::regular) return "";
  std::ifstream file(file_name, std::ios::binary);
  std::string head(longest_head, '\0');
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(file.gcount()));
  return head.substr(0, head.rfind('\n') + 1);
}

bool begins_with_one_of(std::string_view line, const auto& keywords) {
  for (const std::string_view keyword : keywords) {
    if (line.starts_with(keyword)) return true;
  }
  return false;
}

std::string last_word(const std::string& line) {
  std::istringstream words(line);
  std::string word;
  while (words >> word) continue;
  return word;
}

void take_variable(const std::string& file_name, OlderExport& older) {
  constexpr std::string_view wildcard = ".****";
  if (file_name.size() > wildcard.size() && file_name.ends_with(wildcard)) {
    older.series.insert(file_name.substr(0, file_name.size() - wildcard.size()));
  } else if (SPLIT_NUMBERED_NAME(file_name)) {
    older.files.insert(file_name);
  }
}

void take_line(const std::string& line, OlderExport& older) {
  constexpr std::array<std::string_view, 4> variables{
      "scalar per node:", "scalar per element:", "vector per node:", "vector per element:"};
  constexpr std::array<std::string_view, 1> constants{"constant per case file:"};
  const std::string name = last_word(line);
  if (name.find_first_of("/\\") != std::string::npos) return;
  if (begins_with_one_of(line, variables)) take_variable(name, older);
  if (begins_with_one_of(line, constants) && name.ends_with(".const")) older.files.insert(name);
}

std::vector<std::string> regular_files_in(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  fs::directory_iterator entry(folder.empty() ? "." : folder, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code unknown;
    if (entry->symlink_status(unknown).type() == fs::file_type::regular) {
      names.push_back(entry->path().filename().string());
    }
  }
  return names;
}

}  // namespace

bool OlderExport::points_to(const std::string& own_name) const {
  if (files.contains(own_name)) return true;
  const auto parts = SPLIT_NUMBERED_NAME(own_name);
  return parts && series.contains(parts->base);
}

OlderExport READ_OLDER_EXPORT(const std::string& case_name) {
  OlderExport older;
  std::istringstream lines(head_of(case_name));
  for (std::string line; std::getline(lines, line);) take_line(line, older);
  return older;
}

void REMOVE_LEFT_OVER_FILES(const OlderExport& older, const std::string& case_name,
                            const std::function<bool(const std::string&)>& is_kept) {
  if (older.series.empty() && older.files.empty()) return;
  const std::string folder = FILEFOLDERPATH(case_name);
  std::error_code error;
  const auto made = fs::last_write_time(case_name, error);
  if (error) return;
  for (const std::string& name : regular_files_in(folder)) {
    if (!older.points_to(name) || is_kept(name)) continue;
    const bool is_older = fs::last_write_time(folder + name, error) <= made;
    if (!error && is_older) fs::remove(folder + name, error);
  }
}

}  // namespace quillet
