// A .dat file taken apart: its ordinary output times are a series; maxima (99999, or 111111 as -max
// marks its own), minima (-99999, -111111, or 111111 in a file called "...(minmin).dat") and times
// of maxima (99999.1) stand beside it. The maps of sources and times (222222, 333333) are no
// results.
#pragma once

#include <memory>
#include <vector>

#include "dat/dat_reader.h"
#include "results/result_dataset.h"

namespace quillet {

// Walks the heads of all output times from the reader's place. Only kinds that are there are
// listed; maps that are passed over are announced. The datasets read through the reader.
std::vector<std::unique_ptr<ResultDataset>> LIST_DAT_DATASETS(DatReader& reader);

}  // namespace quillet
