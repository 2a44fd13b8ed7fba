// The datasets of an XMDF file, for operations that take everything that a file holds.
#pragma once

#include <memory>
#include <vector>

#include "results/result_dataset.h"
#include "xmdf/xmdf_dataset_reader.h"

namespace quillet {

// All datasets of the reader's file, scalars first, or only those selected when there was a
// selection. They read through the reader, one dataset at a time. A dataset whose times cannot be
// read ends the run.
std::vector<std::unique_ptr<ResultDataset>> LIST_XMDF_DATASETS(XmdfDatasetReader& reader);

}  // namespace quillet
