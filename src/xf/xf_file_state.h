// What stands behind an open file; for the sources of the XF_ operations only.
#pragma once

#include <optional>
#include <string>

#include "xf/xf_handle.h"
#include "xf/xf_paths.h"

namespace quillet {

struct XfFileState {
  XfFileHandle id;
  std::optional<XfDatasetPaths> paths{};  // once they have been asked for
  std::string created_name{};             // of a file that is being written
};

}  // namespace quillet
