#include "driver/conversion_plan.h"

#include <algorithm>
#include <array>
#include <string_view>

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

// Two scalars and vectors of one code would share a file: the scalar is the magnitude.
bool is_magnitude(const ResultDataset& dataset, const std::string& code,
                  const ResultDatasets& all) {
  if (dataset.is_vector()) return false;
  return std::any_of(all.begin(), all.end(), [&](const auto& other) {
    return other->is_vector() && ASAME(code_of(other->name()), code);
  });
}

// What stands between the input's name and the extension; empty for a dataset of no known type.
std::string dat_suffix(const ResultDataset& dataset, bool is_selected_by_itself,
                       const ResultDatasets& all) {
  if (is_selected_by_itself) return "_" + fit_for_file_name(dataset.name());
  const std::string code = code_of(dataset.name());
  if (code.empty()) return "";
  return "_" + fit_for_file_name(code) + (is_magnitude(dataset, code, all) ? "_mag" : "");
}

struct DatPlan {
  const std::string& input;
  bool is_selected_by_itself;
  const ResultDatasets& all;
  std::vector<ConversionTarget> targets;

  ConversionTarget& target_named(const std::string& name) {
    for (ConversionTarget& target : targets) {
      if (target.file_name == name) return target;
    }
    return targets.emplace_back(ConversionTarget{FileKind::dat, name, "", {}});
  }

  // Two runs in one file: which series and maximum belong together cannot be told.
  bool stands_twice(const std::string& suffix) const {
    constexpr std::array kinds{DatasetKind::series, DatasetKind::maximum};
    return std::any_of(kinds.begin(), kinds.end(), [&](DatasetKind kind) {
      return std::count_if(all.begin(), all.end(), [&](const auto& other) {
               return other->kind() == kind &&
                      dat_suffix(*other, is_selected_by_itself, all) == suffix;
             }) > 1;
    });
  }

  // Adds the datasets of one kind to the targets of their types.
  void add(DatasetKind kind, std::optional<float> time) {
    for (const auto& dataset : all) {
      if (dataset->kind() != kind) continue;
      const std::string suffix = dat_suffix(*dataset, is_selected_by_itself, all);
      if (suffix.empty()) {
        warn(*dataset, "is of no known type");
      } else if (stands_twice(suffix)) {
        warn(*dataset, "stands more than once");
      } else {
        target_named(FILENAMEPATH(input) + suffix + EXTENSION_OF(FileKind::dat))
            .datasets.push_back({dataset.get(), kind, dataset->name(), time});
      }
    }
  }

  void leave_out(DatasetKind kind) const {
    const std::string folder(kind == DatasetKind::other ? "another folder" : XMDF_FOLDER(kind));
    for (const auto& dataset : all) {
      if (dataset->kind() == kind) warn(*dataset, "in " + folder + " has no place in a .dat file");
    }
  }

  static void warn(const ResultDataset& dataset, const std::string& reason) {
    SAY("WARNING - Dataset " + QUOTED(dataset.name()) + " " + reason + ", not converted.");
  }
};

}  // namespace

ConversionTarget PLAN_XMDF_TARGET(const std::string& input, const InputType& type,
                                  const ResultDatasets& datasets) {
  const std::string name = FILENAMEPATH(input) + EXTENSION_OF(FileKind::xmdf);
  ConversionTarget target{FileKind::xmdf, name, group_of(input), {}};
  for (const auto& dataset : datasets) {
    const std::string dataset_name = xmdf_dataset_name(input, type, *dataset);
    if (dataset_name.empty()) {
      DatPlan::warn(*dataset, "holds times of maximums of another data type");
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
  DatPlan plan{input, is_selected_by_itself, datasets, {}};
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
