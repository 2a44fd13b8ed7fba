// One dataset of an XMDF input, opened for reading.
#pragma once

#include <string>
#include <string_view>

#include "results/results_record.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

// Opens the dataset as the header's open group, with its times. A failure ends the run.
void OPEN_XMDF_GROUP(XmdfFileHeader& header, const std::string& path);

// Closes the header's open group. A failure ends the run.
void CLOSE_XMDF_GROUP(XmdfFileHeader& header);

// Values, activity and time of one output (from 1) of the open group. `what` is what a failure of
// the values calls them ("data", "maximums", "timestep").
void READ_XMDF_OUTPUT(XmdfFileHeader& header, const std::string& path, std::string_view what,
                      bool is_vector, std::int32_t output, RES_TYPE& record);

}  // namespace quillet
