// The maximum or minimum over the output times of one input.
#pragma once

#include "operations/extreme_kernel.h"
#include "results/result_source.h"

namespace quillet {

// Takes the stored extremes of the input, unless they are to be ignored, else folds its output
// times into `file`, which has been reset. Maps of sources and times (222222, 333333) are no
// results.
//
// Where a format keeps stored extremes apart from the walk, every output time is compared. Where
// they end the walk, the last output time is never compared: engines store the maxima there, at
// time 99999, and then they are the whole result. Times of maxima (99999.1) end the scan.
void SCAN_FOR_EXTREME(Extreme extreme, bool ignore_stored, ResultSource& source, FileExtreme& file);

// Whether that will read the values of all output times, and not stored extremes alone. To be asked
// before the walk begins. Says nothing.
bool SCAN_READS_ALL_TIMES(Extreme extreme, bool ignore_stored, ResultSource& source);

}  // namespace quillet
