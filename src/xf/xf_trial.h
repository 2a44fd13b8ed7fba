// Trying out whether HDF5 survives a file.
#pragma once

#include <string>

#include "support/system_child.h"
#include "xf/xf_status.h"

namespace quillet {

// HDF5 trusts the attributes of a file and crashes, hangs or asks for all memory when they are
// damaged, which nobody who calls it can prevent. So a child process reads them first, in the order
// of the program, and HDF5 fails there instead. Fails when the child does not get through; what
// HDF5 itself notices is left to the calls that meet it again. To be called before the file is
// opened.
XfStatus XF_TRY_FILE(const std::string& name);

// What that child does.
extern const ChildTask xf_trial_task;

}  // namespace quillet
