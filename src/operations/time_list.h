// -times: the output times of a file, on the console and in a text file.
#pragma once

#include <string>

#include "results/result_source.h"

namespace quillet {

// Lists the output times of the source, each on its own line, in hours with three decimals. No
// values are read. Ends the run when the text file cannot be written.
void LIST_OUTPUT_TIMES(ResultSource& source, const std::string& text_file);

}  // namespace quillet
