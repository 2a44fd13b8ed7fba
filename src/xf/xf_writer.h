// Writing datasets into a file that XF_CREATE_FILE made. Close the datasets, then their folder,
// then the file. A file of which any call failed is worth nothing.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "xf/xf_file.h"
#include "xf/xf_range.h"
#include "xf/xf_status.h"

namespace quillet {

struct XfFolderState;
struct XfFolderCloser {
  void operator()(XfFolderState* state) const;
};
// A group that holds datasets.
using XfFolder = std::unique_ptr<XfFolderState, XfFolderCloser>;

struct XfDatasetWriterState;
struct XfDatasetWriterCloser {
  void operator()(XfDatasetWriterState* state) const;
};
// A dataset that is being written.
using XfDatasetWriter = std::unique_ptr<XfDatasetWriterState, XfDatasetWriterCloser>;

struct XfDatasetOptions {
  std::string units = "m";
  std::string time_units = "Hours";
  std::int32_t compression = 0;      // deflate level 1 to 9; 0 is none
  std::int32_t expected_times = 0;   // output times that will follow, where known: cheaper. More or
                                     // fewer may follow
  std::int32_t expected_values = 0;  // per output time; what the dataset says when none follows
  std::int32_t times_per_chunk = 1;
};

// Creates every missing level of the path ("run1/Temporal").
XfStatus XF_CREATE_GENERIC_GROUP(const XfFile& file, const std::string& path, XfFolder& folder);

// The name holds no "/". Fails when the folder has something of this name.
XfStatus XF_CREATE_SCALAR_DATASET(const XfFolder& folder, const std::string& name,
                                  const XfDatasetOptions& options, XfDatasetWriter& dataset);
XfStatus XF_CREATE_VECTOR_DATASET(const XfFolder& folder, const std::string& name,
                                  const XfDatasetOptions& options, XfDatasetWriter& dataset);

// One output time, time in the dataset's time units. The first call settles the number of values.
// Vectors stand as x1 y1 x2 y2 ...; `range` is that of the values or of the vectors' magnitudes.
XfStatus XF_WRITE_SCALAR_TIMESTEP(const XfDatasetWriter& dataset, double time,
                                  std::span<const float> values, const XfRange& range);
XfStatus XF_WRITE_VECTOR_TIMESTEP(const XfDatasetWriter& dataset, double time,
                                  std::span<const float> pairs, const XfRange& range);

// The flags of the output time just written; other than 0 is written as 1. No flags: nothing is
// written, and the dataset has no activity. All output times have flags, or none has.
XfStatus XF_WRITE_ACTIVITY_TIMESTEP(const XfDatasetWriter& dataset,
                                    std::span<const std::int8_t> flags);

// Closing what is not open succeeds. Closing a dataset writes what is left of it.
XfStatus XF_CLOSE_GROUP(XfDatasetWriter& dataset);
XfStatus XF_CLOSE_GROUP(XfFolder& folder);

}  // namespace quillet
