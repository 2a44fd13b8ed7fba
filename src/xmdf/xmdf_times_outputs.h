// The special outputs of an XMDF file's folder Times, told by their names.
#pragma once

#include "xmdf/xmdf_file_header.h"

namespace quillet {

// Sorts the datasets of the folder Times into first times above a depth, durations above a depth
// and times of peak. Depths that a name does not tell are a warning; more outputs of a kind than
// any engine writes end the run.
void CLASSIFY_TIMES_OUTPUTS(XmdfDatasetList& datasets);

}  // namespace quillet
