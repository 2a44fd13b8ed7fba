// Trying out whether HDF5 survives a file.
#pragma once

#include <chrono>
#include <string>

#include "support/system_child.h"
#include "xf/xf_status.h"

namespace quillet {

// HDF5 trusts much of what stands in a file and crashes, hangs or asks for all memory when that is
// damaged, which nobody who calls it can prevent. So a child process first opens everything that
// will be opened and walks every list of chunks, and HDF5 fails there instead. Stored values are
// not read. What HDF5 itself notices is left to the calls that meet it again, and so is a file that
// cannot be opened. Fails when the child does not get through, or makes no progress for the time
// given, or when there can be no child. To be called before any file is opened: the child is a
// copy of the process, which grows with what is open.
XfStatus XF_TRY_FILE(const std::string& name,
                     std::chrono::milliseconds patience = std::chrono::seconds(60));

// What that child does.
extern const ChildTask xf_trial_task;

}  // namespace quillet
