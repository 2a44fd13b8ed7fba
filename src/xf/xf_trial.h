// Trying out whether HDF5 survives a file.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "support/system_child.h"
#include "xf/xf_status.h"
#include "xf/xf_trial_scope.h"

namespace quillet {

constexpr std::chrono::seconds XF_PATIENCE_WITH_TRIALS{60};

// HDF5 trusts much of what stands in a file and crashes, hangs or asks for all memory when that is
// damaged, which nobody who calls it can prevent. So child processes first open everything that
// will be opened and walk every list of chunks, and HDF5 fails there instead. Stored values are
// not read. What HDF5 itself notices is left to the calls that meet it again, and so is a file that
// cannot be opened. Fails when a child does not get through, or makes no progress for the time
// given, or when there can be no child.
//
// Of every file so much is tried as the scope says: opening a dataset takes HDF5 a while, and a
// file may hold many that nobody asks for. One status for each file, up to the first failure or
// interrupt. As many children as the crew has threads work side by side, several on one large file.
// To be called before any file is opened: a child is a copy of the process, which grows with what
// is open.
std::vector<XfStatus> XF_TRY_FILES(const std::vector<std::string>& names,
                                   const XfTrialScope& scope = {},
                                   std::chrono::milliseconds patience = XF_PATIENCE_WITH_TRIALS);
XfStatus XF_TRY_FILE(const std::string& name, const XfTrialScope& scope = {},
                     std::chrono::milliseconds patience = XF_PATIENCE_WITH_TRIALS);

// What those children do.
extern const ChildTask xf_trial_task;

}  // namespace quillet
