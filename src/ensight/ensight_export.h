// -ensight: the results of a run as an EnSight Gold data set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "results/input_type.h"
#include "results/result_dataset.h"

namespace quillet {

struct EnsightInput {
  std::string name;
  InputType type;                        // tells what times of maxima in a .dat file are of
  std::vector<ResultDataset*> datasets;  // in the order in which they are to be written
};

struct ExportRequest {
  std::string output_base;  // as the naming of outputs left it
  std::string mesh_file;
  std::vector<EnsightInput> inputs;        // at least one
  std::vector<std::string> files_read;     // by the run: none is replaced
  std::int32_t node_count = 0;             // values of a scalar output
  std::optional<std::int32_t> cell_count;  // none when no input tells
  bool is_finite_volume = false;
  double time_tolerance = 0.0001;  // hours; times this near are one
};

// Reads the mesh and writes both geometry files, a variable file per dataset and output time, and
// the case file, with console lines. The case file gets its name last, when all it points to is
// there; an older one is removed first.
//
// Ends the run when an output would replace a file that is read, when the mesh does not belong to
// the results, and when a file cannot be read or written.
void EXPORT_ENSIGHT(const ExportRequest& request);

}  // namespace quillet
