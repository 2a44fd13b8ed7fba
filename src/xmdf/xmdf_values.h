// Choosing an output of XMDF inputs and reading values and activity from it. Times are hours.
// What reads prints what it does; whatever cannot be read ends the run with a line that names file
// and dataset. Records are sized by the caller; a file without activity makes every cell active.
#pragma once

#include <vector>

#include "results/results_record.h"
#include "xmdf/xmdf_dataset_reader.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

// An output of a dataset, both counted from 1; 0 means none.
struct XmdfOutput {
  std::int32_t dataset = 0;  // position in the list of the header's datasets
  std::int32_t time_index = 0;
};

// The output that a request means: for 99999 the stored maximum, for -99999 the stored minimum, for
// anything else the nearest output of the time series (the earlier one on a tie). None where the
// file lacks the dataset. Says nothing, but ends the run when the nearest output does not lie
// within the tolerance.
XmdfOutput XMDF_OUTPUT_AT(const XmdfFileHeader& header, float time, float tolerance);

// Tells for every file which output the request means, with the same end at the first file where
// none is near.
void FindXmdfTime(const std::vector<XmdfFileHeader>& files, float requestTime, float tolerance);

// Position (from 1) of the output nearest to the time; 1 when there are none. Tells it. Ends the
// run when it does not lie within the tolerance.
std::int32_t NEAREST_XMDF_TIME(const std::string& fileName, const std::vector<double>& times,
                               float requestTime, float tolerance);

// Reads one output. A caller that walks through a dataset opens its group with the first output and
// closes it with the last.
void ReadXmdfData(XmdfDatasetReader& reader, XmdfOutput output, bool openGroup, bool closeGroup,
                  RES_TYPE& record);

// Reads the stored maximum (minimum), which the file has.
void ReadXmdfMaximum(const XmdfFileHeader& header, RES_TYPE& record);
void ReadXmdfMinimum(const XmdfFileHeader& header, RES_TYPE& record);

// Reads the selected dataset, which must hold exactly one output.
void ReadXmdfSingleTime(const XmdfFileHeader& header, RES_TYPE& record);

}  // namespace quillet
