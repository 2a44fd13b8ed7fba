// Opening XMDF inputs and finding out what they hold.
#pragma once

#include <string>
#include <vector>

#include "xmdf/xmdf_file_header.h"

namespace quillet {

// All print what they find. Whatever cannot be opened or read ends the run.

// Opens every file and reads its version and its numbers of datasets. The file names are set. The
// words are parts of the paths of what the run will open, as far as is known; none: everything.
void ReadXmdfHeaders(std::vector<XmdfFileHeader>& files, const std::vector<std::string>& words);

// Lists the paths of the datasets and the special outputs of the folder Times.
void ReadXmdfDatasetNames(std::vector<XmdfFileHeader>& files);

// Time units, numbers of nodes and cells: of the first scalar dataset, else of the first vector
// dataset.
void ReadXmdfSizes(std::vector<XmdfFileHeader>& files);

// The number of cells, for a file whose first dataset has no activity, from the datasets that were
// chosen, or from all where none was.
void READ_XMDF_CHOSEN_CELL_COUNT(XmdfFileHeader& header);

// The output times of the dataset that holds the time series, in hours; none where there is none.
// The count and the times are read by two calls, since the caller announces what it sizes between.
void ReadXmdfTimeCount(XmdfFileHeader& header);
void ReadXmdfTimes(XmdfFileHeader& header);

// What the first datasets of an opened file tell, scalars first: 0 where they tell nothing. Prints
// nothing and never ends the run.
ResultShape READ_XMDF_SHAPE_SILENTLY(const XmdfFileHeader& header);

}  // namespace quillet
