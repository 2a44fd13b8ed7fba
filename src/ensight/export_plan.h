// Everything that an export will write, decided before its first file is touched.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "ensight/case_file.h"
#include "ensight/ensight_export.h"
#include "ensight/variable_plan.h"

namespace quillet {

struct PlannedVariable {
  VariablePlan plan;
  std::string file_base;  // with its folder
};

struct PlannedInput {
  const EnsightInput* input = nullptr;
  std::vector<PlannedVariable> scalars;  // those passed over too
  std::vector<PlannedVariable> vectors;
};

struct ExportPlan {
  std::string base;  // of all names, with its folder
  std::vector<PlannedInput> inputs;
  RunTimes times;  // those that have files
  bool times_ascend = true;
  std::array<CalendarConstant, 4> constants;

  std::string case_name() const { return base + ".case"; }
  std::string text_geometry_name() const { return base + "_text.geo"; }
  std::string binary_geometry_name() const { return base + "_binary.geo"; }
  std::string constant_file_name(const CalendarConstant& constant) const;

  // Calls visit for every name under which the export writes, temporary names too.
  void for_each_file(const std::function<void(const std::string&)>& visit) const;
};

ExportPlan PLAN_EXPORT(const ExportRequest& request);

// The files of a planned data set that a case file points to, besides the geometry.
class WrittenNames {
 public:
  explicit WrittenNames(const ExportPlan& plan);

  // Of a name without its folder. Case plays no part.
  bool contains(const std::string& own_name) const;

 private:
  void add(const std::vector<PlannedVariable>& datasets);

  std::map<std::string, std::size_t> numbered;  // file base: how many, from 1
  std::vector<std::string> constants;
};

}  // namespace quillet
