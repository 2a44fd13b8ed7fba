// Opening and creating XMDF files (HDF5 files of a certain layout) and the lists of what they hold.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "xf/xf_status.h"
#include "xf/xf_trial_scope.h"

namespace quillet {

struct XfFileState;
struct XfFileCloser {
  void operator()(XfFileState* state) const;
};
// An open file. Close what was opened in it first.
using XfFile = std::unique_ptr<XfFileState, XfFileCloser>;

// Opens for reading; without locks where the file system knows none. Fails when the file cannot be
// opened, is no HDF5 file, is cut short, is damaged, or is HDF5 but not XMDF: the reason says
// which. What a trial of the file left out of its scope is tried when it is opened.
XfStatus XF_OPEN_FILE(const std::string& name, XfFile& file, const XfTrialScope& tried = {});

// Creates the file, replacing one of the same name.
XfStatus XF_CREATE_FILE(const std::string& name, XfFile& file);

// Tells the system how many bytes will be added to a file that was created, which makes writing
// cheaper. A hint: what is not used is given back when the file is closed.
void XF_EXPECT_SIZE(const XfFile& file, std::int64_t bytes);

// Closing a file that is not open succeeds. Fails when the rest of a new file could not be written,
// or when datasets of a new file are still open.
XfStatus XF_CLOSE_FILE(XfFile& file);

// The version of the XMDF library that wrote the file, as it states it.
XfStatus XF_GET_LIBRARY_VERSION_FILE(const XfFile& file, float& version);

struct XfDatasetsInfo {
  std::int32_t count = 0;
  std::int32_t longest_path = 0;  // characters
};

// The datasets of a file, in the order of their names, depth first. Paths have no leading slash.
// The first of the four calls walks the file.
XfStatus XF_GET_SCALAR_DATASETS_INFO(const XfFile& file, XfDatasetsInfo& info);
XfStatus XF_GET_VECTOR_DATASETS_INFO(const XfFile& file, XfDatasetsInfo& info);
XfStatus XF_GET_SCALAR_DATASET_PATHS(const XfFile& file, std::vector<std::string>& paths);
XfStatus XF_GET_VECTOR_DATASET_PATHS(const XfFile& file, std::vector<std::string>& paths);

}  // namespace quillet
