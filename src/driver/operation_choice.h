// Which operation the run performs.
#pragma once

#include "driver/operation_table.h"
#include "driver/run_options.h"

namespace quillet {

// Prints every operation that was asked for. More or less than one ends the run.
const OperationRow& CHOOSE_OPERATION(const RunOptions& options);

}  // namespace quillet
