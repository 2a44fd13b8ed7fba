// The part of a trial that opens all members of a dataset group.
#pragma once

#include "xf/xf_dataset_reader.h"

namespace quillet {

// Opens Values, Times and Active with everything that HDF5 keeps about them, which are the members
// that anybody opens; reads the times' units, and the times where HDF5 does more than copy them.
// What fails is left alone.
void xf_try_group(const XfGroup& group);

}  // namespace quillet
