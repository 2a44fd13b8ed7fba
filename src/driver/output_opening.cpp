#include "driver/output_opening.h"

#include <cmath>

#include "dat/dat_level_files.h"
#include "results/special_times.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/output_unit.h"
#include "support/text.h"

namespace quillet {
namespace {

void refuse(const std::string& input, const std::string& output_name) {
  if (SAME_FILE(input, output_name) || SAME_FILE(input, PART_NAME(output_name))) {
    FAIL_RUN("ERROR - Output file is also an input file: " + QUOTED(output_name));
  }
}

}  // namespace

DatasetKind OUTPUT_DATASET(const RunSetup& setup) {
  if (!setup.operation.dataset_by_time) return setup.operation.dataset;
  const auto asks_for = [&](float time) {
    return setup.time && std::fabs(*setup.time - time) < setup.tolerance;
  };
  if (asks_for(stored_maximum_time)) return DatasetKind::maximum;
  if (asks_for(stored_minimum_time)) return DatasetKind::minimum;
  return setup.operation.dataset;
}

std::vector<std::string> FILES_READ(const RunSetup& setup) {
  std::vector<std::string> files;
  const std::string& first = setup.options.inputs.front();
  if (FILEEXT(first) == ".sup") files.push_back(first);
  if (setup.options.points_file) files.push_back(*setup.options.points_file);
  for (std::size_t input = 0; input < setup.input_names.size(); ++input) {
    const std::string& name = setup.input_names[input];
    files.push_back(name);
    files.push_back(setup.inputs.types[input].mesh_file);
    if (setup.input_kinds[input] != FileKind::dat) continue;
    const LevelFiles levels = LEVEL_FILES(name);
    files.push_back(levels.made_alike);
    files.push_back(levels.original);
  }
  return files;
}

void REFUSE_INPUT_AS_OUTPUT(const RunSetup& setup, const std::string& output_name) {
  for (const std::string& file : FILES_READ(setup)) refuse(file, output_name);
}

void OPEN_OUTPUT(RunSetup& setup) {
  const std::string& name = setup.naming.base_file_name;
  REFUSE_INPUT_AS_OUTPUT(setup, name);
  const DatasetNames names{setup.naming.group_name, OUTPUT_DATASET(setup),
                           setup.naming.dataset_name};
  setup.output = CREATE_OUTPUT(setup.output_kind, name, names);
}

}  // namespace quillet
