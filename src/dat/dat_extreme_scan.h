// The maximum or minimum over the output times of one .dat file.
#pragma once

#include "dat/dat_reader.h"
#include "results/extreme_kernels.h"

namespace quillet {

// Moves past the output time that follows and says so, as every reading of one does.
DatStep READ_TIME_STEP(DatReader& reader);

// Folds every output time that is followed by another into `file`; the last is never compared:
// engines store the maxima there, at time 99999, and then they replace the whole result unless they
// are to be ignored. The times of maxima (99999.1) end the scan. `step` is working space.
void SCAN_FOR_EXTREME(DatReader& reader, Extreme extreme, bool ignore_stored, RES_TYPE& step,
                      FileExtreme& file);

}  // namespace quillet
