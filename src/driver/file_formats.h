// The formats of files that are inputs or outputs: extension, and how an output is created.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "results/result_sink.h"

namespace quillet {

enum class FileKind { dat, xmdf, text };

// With its dot.
std::string EXTENSION_OF(FileKind kind);

// Tells the kind of a file of results from its name's extension; none: it is no such file.
std::optional<FileKind> KIND_OF_RESULTS(const std::string& file_name);

// Appends the extension unless the name has it.
void ADD_EXTENSION(FileKind kind, std::string& file_name);

// Creates an output of results, under its temporary name. Ends the run when that fails.
std::unique_ptr<ResultSink> CREATE_OUTPUT(FileKind kind, const std::string& file_name,
                                          const DatasetNames& names);

}  // namespace quillet
