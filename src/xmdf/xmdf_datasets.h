// The datasets of an XMDF file, for operations that take everything that a file holds.
#pragma once

#include <memory>
#include <vector>

#include "results/result_dataset.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

// All datasets, scalars first, or only those selected when there was a selection. A dataset whose
// times cannot be read ends the run.
std::vector<std::unique_ptr<ResultDataset>> LIST_XMDF_DATASETS(XmdfFileHeader& header);

}  // namespace quillet
