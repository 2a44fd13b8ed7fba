// Finding the datasets of the requested type in XMDF inputs.
#pragma once

#include <string>
#include <vector>

#include "xmdf/xmdf_file_header.h"

namespace quillet {

// Sets the folder indices of every file for the datasets of the type (see XmdfNameSearch). With
// `byPath` the name is the text of a path instead: the last dataset that matches it, or whose group
// and name match it, becomes the selected one and the time series, whatever its folder. Case does
// not matter. A match in an unknown folder ends the run, and so does a file without any. Warns
// where the choice may not be what was meant.
void FindXmdfType(std::vector<XmdfFileHeader>& files, const std::string& typeName, bool byPath);

// The dataset of the given position in the list becomes the selected one and the time series. False
// when there is no such position.
bool SELECT_XMDF_DATASET(XmdfFileHeader& header, bool vectors, std::int32_t position);

// True when the dataset that was selected by its path or its place in the list holds water levels.
bool IS_XMDF_WATER_LEVEL(const XmdfFileHeader& header);

// True when the selected dataset is one of the folder Times that holds times of peak.
bool IS_XMDF_PEAK_TIME(const XmdfFileHeader& header);

}  // namespace quillet
