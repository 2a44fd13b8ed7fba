#include "driver/conversion_plan.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "results/result_types.h"
#include "results/special_times.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/text.h"
#include "xmdf/xmdf_folders.h"

namespace quillet {
namespace {

constexpr std::string_view no_code = "n/a";

// Without characters that separate folders or that some file system refuses.
std::string fit_for_file_name(std::string text) {
  constexpr std::string_view unfit = "/\\ :*?\"<>|%";
  std::replace_if(
      text.begin(), text.end(), [&](char c) { return unfit.find(c) != std::string_view::npos; },
      '_');
  return text;
}

// The name of the type with this suffix ("_h"); empty for none. Of a code that stands twice, a
// vector takes the later row and a scalar the earlier.
std::string type_name_of(const std::string& suffix, bool is_vector) {
  std::string name;
  if (suffix.size() < 2) return name;
  for (const ResultType& type : result_types) {
    const bool is_match = type.code != no_code && ASAME(type.code, suffix.substr(1));
    if (is_match && (is_vector || name.empty())) name = type.name;
  }
  return name;
}

// The code of the type with this name; empty for none.
std::string code_of(const std::string& type_name) {
  for (const ResultType& type : result_types) {
    if (ASAME(type.name, type_name)) return type.code == no_code ? "" : std::string(type.code);
  }
  return "";
}

// A dataset of the folder Times has one output, at time 0.
std::optional<float> time_in_folder(DatasetKind kind) {
  if (kind == DatasetKind::special_times) return 0.0F;
  return std::nullopt;
}

// Times of maxima have names for levels and velocities only.
std::string special_times_name(const InputType& type) {
  if (type.is_water_level) return "Time of Peak h";
  if (ASAME(type.type, "_v")) return "Time of Peak V";
  return "";
}

std::string suffix_of(const std::string& input) {
  return FILE_SUFFIX(WITHOUT_BRACKETS(input));
}

bool is_of_known_type(const std::string& input) {
  return !type_name_of(suffix_of(input), false).empty();
}

// The input's name without its type suffix, unless that is all there is.
std::string group_of(const std::string& input) {
  const auto [bare, brackets] = SPLIT_BRACKETS(input);
  std::string group = FILENAME(bare);
  const std::size_t suffix_size = is_of_known_type(input) ? suffix_of(input).size() : 0;
  if (suffix_size < group.size()) group.resize(group.size() - suffix_size);
  for (const std::string& bracket : brackets) group += bracket;
  return group;
}

std::string xmdf_dataset_name(const std::string& input, const InputType& type,
                              const ResultDataset& dataset) {
  if (dataset.kind() == DatasetKind::special_times) return special_times_name(type);
  if (is_of_known_type(input)) return type_name_of(suffix_of(input), dataset.is_vector());
  return FILENAME(input);
}

void warn(const ResultDataset& dataset, const std::string& reason) {
  SAY("WARNING - Dataset " + QUOTED(dataset.name()) + " " + reason + ", not converted.");
}

class DatPlan {
 public:
  DatPlan(const std::string& input_name, bool selected_by_itself, const ResultDatasets& datasets)
      : input(input_name), is_selected_by_itself(selected_by_itself), all(datasets) {
    for (const auto& dataset : all) {
      if (dataset->is_vector()) vector_codes.insert(LOWERCASE(code_of(dataset->name())));
    }
    for (const auto& dataset : all) ++standing[{dataset->kind(), suffix_of_target(*dataset)}];
  }

  // Adds the datasets of one kind to the targets of their types.
  void add(DatasetKind kind, std::optional<float> time) {
    for (const auto& dataset : all) {
      if (dataset->kind() != kind) continue;
      const std::string suffix = suffix_of_target(*dataset);
      if (suffix.empty()) {
        warn(*dataset, "is of no known type");
      } else if (stands_twice(suffix)) {
        warn(*dataset, "stands more than once");
      } else {
        target_of(suffix).datasets.push_back({dataset.get(), kind, dataset->name(), time});
      }
    }
  }

  void leave_out(DatasetKind kind) const {
    const std::string folder(kind == DatasetKind::other ? "another folder" : XMDF_FOLDER(kind));
    for (const auto& dataset : all) {
      if (dataset->kind() == kind) warn(*dataset, "in " + folder + " has no place in a .dat file");
    }
  }

  std::vector<ConversionTarget> targets;

 private:
  // What stands between the input's name and the extension; empty for a dataset of no known type.
  // A scalar of the code that vectors have too holds their magnitudes.
  std::string suffix_of_target(const ResultDataset& dataset) const {
    if (is_selected_by_itself) return "_" + fit_for_file_name(dataset.name());
    const std::string code = code_of(dataset.name());
    if (code.empty()) return "";
    const bool is_magnitude = !dataset.is_vector() && vector_codes.contains(LOWERCASE(code));
    return "_" + fit_for_file_name(code) + (is_magnitude ? "_mag" : "");
  }

  // Two runs in one file: which series and maximum belong together cannot be told.
  bool stands_twice(const std::string& suffix) const {
    const auto count_of = [&](DatasetKind kind) {
      const auto found = standing.find({kind, suffix});
      return found == standing.end() ? 0 : found->second;
    };
    return count_of(DatasetKind::series) > 1 || count_of(DatasetKind::maximum) > 1;
  }

  ConversionTarget& target_of(const std::string& suffix) {
    const auto [place, is_new] = place_of.try_emplace(suffix, targets.size());
    if (is_new) {
      const std::string name = FILENAMEPATH(input) + suffix + EXTENSION_OF(FileKind::dat);
      targets.push_back({FileKind::dat, name, "", {}});
    }
    return targets[place->second];
  }

  const std::string& input;
  const bool is_selected_by_itself;
  const ResultDatasets& all;
  std::set<std::string> vector_codes;
  std::map<std::pair<DatasetKind, std::string>, int> standing;  // datasets by kind and suffix
  std::map<std::string, std::size_t> place_of;                  // of the target with the suffix
};

}  // namespace

ConversionTarget PLAN_XMDF_TARGET(const std::string& input, const InputType& type,
                                  const ResultDatasets& datasets) {
  const std::string name = FILENAMEPATH(input) + EXTENSION_OF(FileKind::xmdf);
  ConversionTarget target{FileKind::xmdf, name, group_of(input), {}};
  for (const auto& dataset : datasets) {
    const std::string dataset_name = xmdf_dataset_name(input, type, *dataset);
    if (dataset_name.empty()) {
      warn(*dataset, "holds times of maximums of another data type");
    } else {
      target.datasets.push_back(
          {dataset.get(), dataset->kind(), dataset_name, time_in_folder(dataset->kind())});
    }
  }
  return target;
}

std::vector<ConversionTarget> PLAN_DAT_TARGETS(const std::string& input, bool is_selected_by_itself,
                                               const ResultDatasets& datasets) {
  constexpr std::array others{DatasetKind::minimum, DatasetKind::special_times, DatasetKind::fixed,
                              DatasetKind::other};
  DatPlan plan(input, is_selected_by_itself, datasets);
  plan.add(DatasetKind::series, std::nullopt);
  plan.add(DatasetKind::maximum, stored_maximum_time);
  for (const DatasetKind kind : others) {
    if (is_selected_by_itself) {
      plan.add(kind, std::nullopt);
    } else {
      plan.leave_out(kind);
    }
  }
  return std::move(plan.targets);
}

}  // namespace quillet
