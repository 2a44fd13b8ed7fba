// A .dat file taken apart: its ordinary output times are a series; stored maxima (99999), minima
// (-99999) and times of maxima (99999.1) stand beside it.
#pragma once

#include <memory>
#include <vector>

#include "dat/dat_reader.h"
#include "results/result_dataset.h"

namespace quillet {

// Walks the heads of all output times from the reader's place. Only kinds that are there are
// listed. The datasets read through the reader.
std::vector<std::unique_ptr<ResultDataset>> LIST_DAT_DATASETS(DatReader& reader);

}  // namespace quillet
