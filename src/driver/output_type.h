// Which kind of file the output is, and its extension.
#pragma once

#include <string>
#include <vector>

#include "driver/file_formats.h"
#include "driver/operation_table.h"
#include "driver/output_naming.h"
#include "driver/run_options.h"

namespace quillet {

// Prints what decides. `input_kinds` has one entry per input. Appends the extension to the base
// file name, where the operation does not name its outputs itself.
FileKind SETTLE_OUTPUT_TYPE(OutputKind output, const RunOptions& options,
                            const std::vector<FileKind>& input_kinds, OutputNaming& naming);

}  // namespace quillet
