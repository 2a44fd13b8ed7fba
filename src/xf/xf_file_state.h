// What stands behind an open file; for the sources of the XF_ operations only.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "support/system_files.h"
#include "xf/xf_handle.h"
#include "xf/xf_paths.h"
#include "xf/xf_stored_file.h"
#include "xf/xf_trial_scope.h"

namespace quillet {

struct XfFileState {
  XfFileState(XfFileHandle file, std::filesystem::path created)
      : id(std::move(file)), created_name(std::move(created)) {}
  XfFileState(const XfFileState&) = delete;
  XfFileState& operator=(const XfFileState&) = delete;
  // Closes the file and gives back what was reserved for it and not used.
  ~XfFileState();

  XfFileHandle id;
  std::optional<XfDatasetPaths> paths;  // once they have been asked for
  std::filesystem::path created_name;   // of a file that is being written; else empty
  std::uint64_t reserved_end = 0;       // of what was reserved for it
  std::string opened_name;              // of a file that is read; else empty
  // Of a file that is read: HDF5's handle of the system's, and the bytes when it was opened, or -1.
  SystemFile descriptor = no_file;
  std::int64_t opened_size = -1;
  XfStoredFile stored;
  XfTrialScope tried;  // of a file that is read
};

}  // namespace quillet
