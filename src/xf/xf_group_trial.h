// The part of a trial that opens all members of a dataset group.
#pragma once

#include "xf/xf_dataset_reader.h"

namespace quillet {

// Opens Values, Times, Active, Mins and Maxs, with everything that HDF5 keeps about them, and reads
// the times and their units. What fails is left alone.
void xf_try_group(const XfGroup& group);

}  // namespace quillet
