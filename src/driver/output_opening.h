// Opening the output of a run, never over one of its inputs.
#pragma once

#include <string>
#include <vector>

#include "driver/run_setup.h"

namespace quillet {

// The files that the run may read, whether they are there or not: the .sup file, the file of
// points, the inputs, their meshes and water levels, those too that the operation makes no use of.
std::vector<std::string> FILES_READ(const RunSetup& setup);

// Ends the run when the output is the same file as an input, as the mesh or as the water levels of
// one, by whatever name, or would grow under the name of one.
void REFUSE_INPUT_AS_OUTPUT(const RunSetup& setup, const std::string& output_name);

// What the output holds, which may depend on the time asked for.
DatasetKind OUTPUT_DATASET(const RunSetup& setup);

// Opens the output, one dataset file that is named by now, under its temporary name.
void OPEN_OUTPUT(RunSetup& setup);

}  // namespace quillet
