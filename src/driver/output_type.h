// Which kind of file the output is, and its extension.
#pragma once

#include <string>
#include <vector>

#include "driver/output_naming.h"
#include "driver/run_options.h"

namespace quillet {

enum class FileKind { dat, xmdf, text };

// Prints what decides. `input_kinds` has one entry per input. Appends the extension to the base
// file name. Not for -conv, which names its outputs itself but prints what -out says.
FileKind SETTLE_OUTPUT_TYPE(Operation operation, const RunOptions& options,
                            const std::vector<FileKind>& input_kinds, OutputNaming& naming);

}  // namespace quillet
