#include "ensight/export_plan.h"

#include <algorithm>

#include "ensight/ensight_names.h"
#include "ensight/geometry.h"
#include "ensight/numbered_names.h"
#include "support/file_names.h"
#include "support/output_unit.h"
#include "support/text.h"

namespace quillet {
namespace {

class Planner {
 public:
  Planner(const ExportRequest& planned_request, ExportPlan& target)
      : request(planned_request), plan(target) {}

  void add_input(const EnsightInput& input) {
    PlannedInput planned{&input, {}, {}};
    for (ResultDataset* dataset : input.datasets) {
      if (!dataset->is_vector()) planned.scalars.push_back(planned_variable(input, *dataset));
    }
    for (ResultDataset* dataset : input.datasets) {
      if (dataset->is_vector()) planned.vectors.push_back(planned_variable(input, *dataset));
    }
    plan.inputs.push_back(std::move(planned));
  }

 private:
  PlannedVariable planned_variable(const EnsightInput& input, ResultDataset& dataset) {
    PlannedVariable planned{PLAN_VARIABLE(request, input, dataset, plan.times.hours), ""};
    VariablePlan& own = planned.plan;
    if (own.outputs.empty()) return planned;
    own.description = ENSIGHT_DESCRIPTION(own.description);
    own.output_name =
        output_names.take(ENSIGHT_VARIABLE_NAME(own.output_name), longest_variable_name);
    planned.file_base = file_base_of(input, own);
    return planned;
  }

  // What stands in one folder must be told apart by its name alone.
  std::string file_base_of(const EnsightInput& input, const VariablePlan& own) {
    const std::string of_input = request.inputs.size() > 1 ? "_" + FILENAME(input.name) : "";
    const std::string name =
        NAME_IN_CASE_FILE(plan.base) + ENSIGHT_FILE_NAME(of_input + own.file_ending);
    return FILEFOLDERPATH(plan.base) +
           file_bases.take(name, LONGEST_FILE_BASE(own.output_name.size()));
  }

  const ExportRequest& request;
  ExportPlan& plan;
  DistinctNames output_names;
  DistinctNames file_bases;
};

}  // namespace

std::string ExportPlan::constant_file_name(const CalendarConstant& constant) const {
  return base + "_" + std::string(constant.name) + ".const";
}

void ExportPlan::for_each_file(const std::function<void(const std::string&)>& visit) const {
  visit(case_name());
  visit(PART_NAME(case_name()));
  for (const std::string& geometry : {text_geometry_name(), binary_geometry_name()}) {
    visit(geometry);
    visit(GEOMETRY_LOG_NAME(geometry));
  }
  for (const CalendarConstant& constant : constants) {
    if (!constant.fits_line()) visit(constant_file_name(constant));
  }
  for (const PlannedInput& input : inputs) {
    for (const auto* datasets : {&input.scalars, &input.vectors}) {
      for (const PlannedVariable& dataset : *datasets) {
        for (const PlannedOutput& output : dataset.plan.outputs) {
          visit(ENSIGHT_NUMBER_SUFFIX(dataset.file_base, output.number));
        }
      }
    }
  }
}

ExportPlan PLAN_EXPORT(const ExportRequest& request) {
  ExportPlan plan;
  plan.base = ENSIGHT_BASE(request.output_base);
  plan.times = RUN_TIMES(request.inputs);
  Planner planner(request, plan);
  for (const EnsightInput& input : request.inputs) planner.add_input(input);
  const auto count = std::min<std::size_t>(plan.times.hours.size(), largest_ensight_number);
  plan.times.hours.resize(count);
  plan.times.texts.resize(count);
  plan.times_ascend = plan.times.ascend();
  plan.constants = CALENDAR_CONSTANTS(plan.times.hours);
  return plan;
}

WrittenNames::WrittenNames(const ExportPlan& plan) {
  for (const PlannedInput& input : plan.inputs) {
    add(input.scalars);
    add(input.vectors);
  }
  for (const CalendarConstant& constant : plan.constants) {
    if (constant.fits_line()) continue;
    constants.push_back(LOWERCASE(NAME_IN_CASE_FILE(plan.constant_file_name(constant))));
  }
}

void WrittenNames::add(const std::vector<PlannedVariable>& datasets) {
  for (const PlannedVariable& dataset : datasets) {
    if (dataset.plan.outputs.empty()) continue;
    numbered[LOWERCASE(NAME_IN_CASE_FILE(dataset.file_base))] = dataset.plan.outputs.size();
  }
}

bool WrittenNames::contains(const std::string& own_name) const {
  const std::string name = LOWERCASE(own_name);
  if (std::find(constants.begin(), constants.end(), name) != constants.end()) return true;
  const auto parts = SPLIT_NUMBERED_NAME(name);
  if (!parts) return false;
  const auto found = numbered.find(parts->base);
  return found != numbered.end() && parts->number >= 1 && parts->number <= found->second;
}

}  // namespace quillet
