#include "ensight/variable_plan.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include "ensight/ensight_names.h"
#include "support/text.h"

namespace quillet {
namespace {

// Finds output times of the run.
class RunTimeSearch {
 public:
  explicit RunTimeSearch(const std::vector<double>& run_times) : times(run_times) {
    for (std::size_t i = 0; i < times.size(); ++i) ascending.push_back({times[i], i});
    std::sort(ascending.begin(), ascending.end());
  }

  // Position of the output time that a time is, or their number; of equally near ones the last. The
  // usual series has the run's times one by one.
  std::size_t position_of(double time, std::size_t likely, double tolerance) const {
    const auto distance = [&](std::size_t i) { return std::fabs(times[i] - time); };
    if (likely < times.size() && distance(likely) <= tolerance) return likely;
    std::size_t nearest = times.size();
    double least = tolerance;
    const auto is_last = [&](std::size_t i) { return nearest == times.size() || i > nearest; };
    const auto consider = [&](std::size_t i) {
      const bool is_nearer = distance(i) < least || (distance(i) == least && is_last(i));
      if (!is_nearer) return;
      nearest = i;
      least = distance(i);
    };
    if (std::isnan(time)) return nearest;
    const auto above = first_above(time);
    if (above != ascending.begin()) consider(std::prev(above)->second);
    if (above != ascending.end()) consider(std::prev(first_above(above->first))->second);
    return nearest;
  }

 private:
  using Place = std::pair<double, std::size_t>;

  std::vector<Place>::const_iterator first_above(double time) const {
    return std::upper_bound(ascending.begin(), ascending.end(), Place{time, times.size()});
  }

  const std::vector<double>& times;
  std::vector<Place> ascending;  // with their positions
};

void plan_series(const std::vector<double>& times, const std::vector<double>& run_times,
                 double tolerance, VariablePlan& plan) {
  const RunTimeSearch search(run_times);
  std::vector<bool> is_there(run_times.size());
  std::size_t likely = 0;
  for (std::size_t output = 0; output < times.size(); ++output) {
    const std::size_t position = search.position_of(times[output], likely, tolerance);
    if (position == run_times.size() || is_there[position]) {
      ++plan.unexpected_outputs;
      continue;
    }
    is_there[position] = true;
    likely = position + 1;
    if (position >= largest_ensight_number) {
      plan.has_too_many = true;
    } else {
      plan.outputs.push_back({output, static_cast<std::int64_t>(position) + 1});
    }
  }
  const auto needed = std::min<std::size_t>(run_times.size(), largest_ensight_number);
  if (plan.outputs.size() < needed) plan.outputs.clear();
  plan.is_series = true;
}

void plan_single(const ResultDataset& dataset, VariablePlan& plan) {
  const std::size_t count = dataset.times().size();
  if (count == 0) return;
  plan.outputs.push_back({count - 1, 1});
  plan.unexpected_outputs = static_cast<std::int64_t>(count) - 1;
}

// A folder that says nothing: a series when it has the run's times, else a single dataset when it
// has one output.
void plan_other(const ExportRequest& request, const ResultDataset& dataset,
                const std::vector<double>& run_times, VariablePlan& plan) {
  VariablePlan series = plan;
  plan_series(dataset.times(), run_times, request.time_tolerance, series);
  if (!series.outputs.empty()) {
    plan = series;
  } else if (dataset.times().size() == 1) {
    plan_single(dataset, plan);
  }
}

std::string own_name(const ResultDataset& dataset) {
  return BLANK(dataset.name()) ? dataset.description() : dataset.name();
}

std::string_view prefix_of(DatasetKind kind) {
  switch (kind) {
    case DatasetKind::maximum:
      return "Max_";
    case DatasetKind::minimum:
      return "Min_";
    case DatasetKind::fixed:
      return "Fixed_";
    case DatasetKind::series:
    case DatasetKind::special_times:
    case DatasetKind::other:
      return "";
  }
  return "";
}

// Stored extremes of a .dat file have fixed endings. Where several inputs could have one, the
// output name says of what.
void name_extreme(const ExportRequest& request, std::string_view ending, VariablePlan& plan) {
  plan.file_ending = ending;
  if (request.inputs.size() == 1) plan.output_name = ending;
}

// False when the input's type has no times of maxima.
bool name_times_of_maxima(const EnsightInput& input, VariablePlan& plan) {
  std::string_view quantity;
  if (ASAME(input.type.type, "_h")) quantity = "h";
  if (ASAME(input.type.type, "_v")) quantity = "V";
  if (quantity.empty()) return false;
  plan.output_name = "_t" + UPPERCASE(quantity) + "Max";
  plan.file_ending = plan.output_name;
  plan.title = plan.description = "Time of Peak " + std::string(quantity);
  return true;
}

// False when the dataset has no place in the data set.
bool name_dataset(const ExportRequest& request, const EnsightInput& input,
                  const ResultDataset& dataset, VariablePlan& plan) {
  const std::string name = own_name(dataset);
  plan.title = name;
  plan.description = dataset.description();
  plan.output_name = std::string(prefix_of(dataset.kind())) + name;
  plan.file_ending = "_" + plan.output_name;
  if (!dataset.shares_name()) return true;
  switch (dataset.kind()) {
    case DatasetKind::maximum:
      name_extreme(request, "Max", plan);
      return true;
    case DatasetKind::minimum:
      name_extreme(request, "Min", plan);
      return true;
    case DatasetKind::special_times:
      return name_times_of_maxima(input, plan);
    case DatasetKind::series:
    case DatasetKind::fixed:
    case DatasetKind::other:
      return true;
  }
  return true;
}

const ResultDataset* first_dataset(const std::vector<EnsightInput>& inputs, DatasetKind kind,
                                   std::size_t least_outputs) {
  for (const EnsightInput& input : inputs) {
    for (const ResultDataset* dataset : input.datasets) {
      if (dataset->kind() == kind && dataset->times().size() >= least_outputs) return dataset;
    }
  }
  return nullptr;
}

}  // namespace

bool RunTimes::ascend() const {
  return std::adjacent_find(hours.begin(), hours.end(), std::greater_equal<>()) == hours.end();
}

RunTimes RUN_TIMES(const std::vector<EnsightInput>& inputs) {
  const ResultDataset* dataset = first_dataset(inputs, DatasetKind::series, 1);
  if (dataset == nullptr) dataset = first_dataset(inputs, DatasetKind::other, 2);
  RunTimes run_times;
  if (dataset == nullptr) return run_times;
  for (std::size_t output = 0; output < dataset->times().size(); ++output) {
    const double time = dataset->times()[output];
    if (!std::isfinite(time)) continue;
    run_times.hours.push_back(time);
    run_times.texts.push_back(dataset->time_text(output));
  }
  return run_times;
}

VariablePlan PLAN_VARIABLE(const ExportRequest& request, const EnsightInput& input,
                           ResultDataset& dataset, const std::vector<double>& run_times) {
  VariablePlan plan;
  plan.dataset = &dataset;
  if (!name_dataset(request, input, dataset, plan)) return plan;
  switch (dataset.kind()) {
    case DatasetKind::series:
      plan_series(dataset.times(), run_times, request.time_tolerance, plan);
      return plan;
    case DatasetKind::other:
      plan_other(request, dataset, run_times, plan);
      return plan;
    case DatasetKind::maximum:
    case DatasetKind::minimum:
    case DatasetKind::special_times:
    case DatasetKind::fixed:
      plan_single(dataset, plan);
      return plan;
  }
  return plan;
}

}  // namespace quillet
