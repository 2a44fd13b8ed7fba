// Choosing an output of XMDF inputs and reading values and activity from it. Times are hours.
// Everything prints what it does; whatever cannot be read ends the run with a line that names file
// and dataset. Records are sized by the caller; a file without activity makes every cell active.
#pragma once

#include <vector>

#include "results/extreme_kernels.h"
#include "results/results_record.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

// Chooses dataset and output time in every file: 99999 the stored maximum, -99999 the stored
// minimum, anything else the nearest output of the time series (the earlier one on a tie), which
// must lie within the tolerance. A file without what is asked for is left with nothing selected.
void FindXmdfTime(std::vector<XmdfFileHeader>& files, float requestTime, float tolerance);

// Position (from 1) of the output nearest to the time; 1 when there are none. Ends the run when it
// does not lie within the tolerance.
std::int32_t NearestXmdfTime(const std::vector<double>& times, float requestTime, float tolerance);

// Reads one output of the selected dataset, else of the time series. `timeIndex` 0 is the output
// that FindXmdfTime chose. A caller that walks through a dataset opens its group with the first
// output and closes it with the last.
void ReadXmdfData(XmdfFileHeader& header, bool isVector, std::int32_t timeIndex, bool openGroup,
                  bool closeGroup, RES_TYPE& record);

// Reads the stored maximum (minimum), which the file has.
void ReadXmdfMaximum(XmdfFileHeader& header, RES_TYPE& record);
void ReadXmdfMinimum(XmdfFileHeader& header, RES_TYPE& record);

// Reads the selected dataset, which must hold exactly one output.
void ReadXmdfSingleTime(XmdfFileHeader& header, RES_TYPE& record);

// Folds every output of the time series, the last included, into the running maximum (minimum) and
// its times; not the maps of sources and times that a converted file of maxima holds. `step` is
// working space.
void ReadXmdfTemporalMaximum(XmdfFileHeader& header, RES_TYPE& step, FileExtreme& file);
void ReadXmdfTemporalMinimum(XmdfFileHeader& header, RES_TYPE& step, FileExtreme& file);

}  // namespace quillet
