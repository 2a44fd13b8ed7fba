// --grid and --points: what the command line says of them, and their runs.
#pragma once

#include <string_view>

#include "driver/output_naming.h"
#include "driver/run_options.h"
#include "driver/run_setup.h"

namespace quillet {

// False for a value that cannot be used.
bool SET_CELL_SIZE(RunOptions& options, std::string_view value);
bool SET_POINTS_FILE(RunOptions& options, std::string_view value);

// The output beside the input, or what -out says. An -out of another kind ends the run.
void NAME_GRID(const RunOptions& options, OutputNaming& naming);
void NAME_TIME_SERIES(const RunOptions& options, OutputNaming& naming);

void WRITE_GRID(RunSetup& setup);
void WRITE_TIME_SERIES(RunSetup& setup);

}  // namespace quillet
