// -xnfo: a text report on an XMDF file: its datasets and their output times.
#pragma once

#include <string>

#include "xmdf/xmdf_file_header.h"

namespace quillet {

// Writes the report on an opened file and closes the file. Of a dataset with more than 1000 output
// times the report holds the first 1000. What cannot be read is left out, with an error line.
void WRITE_XMDF_REPORT(XmdfFileHeader& header, const std::string& report_name);

}  // namespace quillet
