#include "driver/input_checks.h"

#include <string>

#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

void check_counts(const RunSetup& setup) {
  const ResultSource& primary = PRIMARY_INPUT(setup);
  SAY_APART("Checking that .dat and .xmdf files have same number nodes and cells...");
  for (const auto& source : setup.inputs.sources) {
    if (SAME_COUNTS(source->shape(), primary.shape())) continue;
    SAY("ERROR - Number nodes and/or cells in " + source->name() +
        " not the same as in primary .dat file.");
    SAY_HELP("Found " + COUNTS_TEXT(source->shape()) + ", expected " +
             COUNTS_TEXT(primary.shape()) + " as in " + QUOTED(primary.name()));
    END_WITH_PAUSE();
  }
  SAY_APART("All files have the same number of nodes and cells.");
}

void check_vectors(const RunSetup& setup) {
  if (!setup.operation.needs_vectors) return;
  for (const auto& source : setup.inputs.sources) {
    if (source->shape().is_vector) continue;
    SAY_APART("ERROR - .dat file or xmdf type must be vector data for " +
              std::string(setup.operation.flag) + " option");
    END_WITH_PAUSE();
  }
}

void check_kinds(const RunSetup& setup) {
  for (const auto& source : setup.inputs.sources) {
    if (source->shape().is_vector == PRIMARY_INPUT(setup).shape().is_vector) continue;
    SAY("ERROR - " + source->name() +
        " is not the same vector or scalar format as in primary .dat file.");
    END_WITH_PAUSE();
  }
}

}  // namespace

const ResultSource& PRIMARY_INPUT(const RunSetup& setup) {
  if (!setup.dat_sources.empty()) return *setup.dat_sources.front();
  return *setup.inputs.sources.front();
}

void CHECK_CONSISTENCY(const RunSetup& setup) {
  const InputsFit fit = setup.operation.inputs_fit;
  if (fit == InputsFit::each_by_itself) return;
  check_counts(setup);
  check_vectors(setup);
  if (fit == InputsFit::in_shape) check_kinds(setup);
}

}  // namespace quillet
