#include "xf/xf_trial.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <deque>
#include <filesystem>
#include <tuple>

#include "support/interrupt.h"
#include "support/system_memory.h"
#include "support/text.h"
#include "support/work_crew.h"
#include "xf/xf_dataset_reader.h"
#include "xf/xf_errors.h"
#include "xf/xf_file.h"
#include "xf/xf_file_state.h"
#include "xf/xf_group_trial.h"

namespace quillet {
namespace {

// A sound file takes a few megabytes.
constexpr std::size_t most_memory = std::size_t{1} << 30;

// What one child tries of a file: the lists, and every so manyth dataset of those in the scope.
struct Part {
  std::size_t first = 0;
  std::size_t step = 1;
  XfTrialScope scope;
  std::string name;  // of the file
};

// The same as an item of a child's: "0 2 Depth|Water Level|/a.xmdf".
std::string item_of(const Part& part) {
  std::string item = std::to_string(part.first) + " " + std::to_string(part.step) + " ";
  for (const std::string& word : part.scope.words) item += word + "|";
  return item + "/" + part.name;
}

Part part_of(const std::string& item) {
  Part part;
  const char* const end = item.data() + item.size();
  const char* const blank = std::from_chars(item.data(), end, part.first).ptr;
  const char* place = std::from_chars(blank + 1, end, part.step).ptr + 1;
  while (*place != '/') {
    const char* const word_end = std::find(place, end, '|');
    part.scope.words.emplace_back(place, word_end);
    place = word_end + 1;
  }
  part.name.assign(place + 1, end);
  return part;
}

// Nothing is looked at again, and what HDF5 keeps of it would take longer to get memory for than to
// read.
void keep_little(const XfFileState& file) {
  constexpr std::size_t bytes_kept = std::size_t{32} << 10;
  H5AC_cache_config_t config{};
  config.version = H5AC__CURR_CACHE_CONFIG_VERSION;
  if (H5Fget_mdc_config(file.id.get(), &config) < 0) return;
  config.set_initial_size = true;
  config.initial_size = config.min_size = config.max_size = bytes_kept;
  H5Fset_mdc_config(file.id.get(), &config);
}

void keep_those_in(const XfTrialScope& scope, std::vector<std::string>& paths) {
  if (paths.empty()) return;
  paths.erase(std::remove_if(paths.begin() + 1, paths.end(),
                             [&](const std::string& path) { return !scope.holds(path); }),
              paths.end());
}

// What the program asks of a file, in its order.
void try_part(const Part& part, ChildReport& report) {
  XfFile file;
  float version = 0;
  if (!XF_OPEN_FILE(part.name, file).ok()) return;
  keep_little(*file);
  if (!XF_GET_LIBRARY_VERSION_FILE(file, version).ok()) return;
  std::vector<std::string> paths, vectors;
  if (!XF_GET_SCALAR_DATASET_PATHS(file, paths).ok()) return;
  std::ignore = XF_GET_VECTOR_DATASET_PATHS(file, vectors);
  keep_those_in(part.scope, paths);
  keep_those_in(part.scope, vectors);
  paths.insert(paths.end(), vectors.begin(), vectors.end());
  for (std::size_t i = part.first; i < paths.size(); i += part.step) {
    XfGroup group;
    if (XF_OPEN_GROUP(file, paths[i], group).ok()) xf_try_group(group);
    report.progress();
  }
}

// HDF5 goes on without memory that it does not get.
void try_item(const std::string& item, ChildReport& report) {
  errno = 0;
  try_part(part_of(item), report);
  if (errno == ENOMEM) return;
  // Memory that HDF5 has overwritten is noticed at the latest when it gives back what it kept.
  H5garbage_collect();
  if (HEAP_IS_SOUND()) report.done();
}

std::string seconds_of(std::chrono::milliseconds time) {
  return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count());
}

XfStatus status_of(const ChildEnd& end, std::chrono::milliseconds patience) {
  const std::string expected = "expected intact HDF5 headers, found ";
  switch (end.how) {
    case ChildEnd::How::done:
      break;
    case ChildEnd::How::died:
      return XF_FAILURE(xf_fatal_damage);
    case ChildEnd::How::stuck:
      return XF_FAILURE(expected + "no progress in reading them for " + seconds_of(patience) +
                        " s");
    case ChildEnd::How::not_started:
      return XF_FAILURE("the trial of the file cannot be started: " + end.reason);
  }
  return {};
}

// Then it takes little more than the start of a child.
bool is_small(const std::string& name, const XfTrialScope& scope) {
  constexpr std::uintmax_t small_file = std::uintmax_t{1} << 20;
  if (!scope.is_all()) return true;
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(name, error);
  return error || size < small_file;
}

// As many as can be tried side by side.
std::vector<Part> parts_of(const std::vector<std::string>& names, const XfTrialScope& scope) {
  constexpr std::size_t most_parts = 4;
  const auto threads = static_cast<std::size_t>(WORK_CREW().threads());
  std::vector<Part> parts;
  for (const std::string& name : names) {
    const std::size_t count =
        is_small(name, scope) ? 1 : std::clamp(threads / names.size(), std::size_t{1}, most_parts);
    for (std::size_t i = 0; i < count; ++i) parts.push_back({i, count, scope, name});
  }
  return parts;
}

}  // namespace

const ChildTask xf_trial_task{.name = "try-xmdf-file", .perform = try_item};

bool XfTrialScope::holds(const std::string& path) const {
  return is_all() || std::any_of(words.begin(), words.end(),
                                 [&](const std::string& word) { return FLAGEXISTS(path, word); });
}

std::vector<XfStatus> XF_TRY_FILES(const std::vector<std::string>& names, const XfTrialScope& scope,
                                   std::chrono::milliseconds patience) {
  xf_prepare_hdf5();  // once, not in every child
  const auto threads = static_cast<std::size_t>(WORK_CREW().threads());
  const std::vector<Part> parts = parts_of(names, scope);
  std::vector<XfStatus> tried;
  std::deque<Child> children;
  std::size_t begun = 0;
  for (const Part& part : parts) {
    for (; begun < parts.size() && children.size() < threads; ++begun) {
      children.emplace_back(xf_trial_task, item_of(parts[begun]),
                            ChildLimits{patience, most_memory});
    }
    XfStatus status = status_of(children.front().wait(), patience);
    children.pop_front();
    const bool goes_on = status.ok() && !INTERRUPTED();
    if (part.first == 0) tried.emplace_back();
    tried.back() = std::move(status);
    if (!goes_on) break;
  }
  return tried;
}

XfStatus XF_TRY_FILE(const std::string& name, const XfTrialScope& scope,
                     std::chrono::milliseconds patience) {
  return XF_TRY_FILES({name}, scope, patience).front();
}

}  // namespace quillet
