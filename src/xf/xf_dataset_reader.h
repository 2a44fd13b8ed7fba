// Reading one dataset of a file: sizes, times, values, activity. Output times are counted from 1.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "xf/xf_file.h"
#include "xf/xf_status.h"

namespace quillet {

struct XfGroupState;
struct XfGroupCloser {
  void operator()(XfGroupState* state) const;
};
// An open dataset group. Keeps what it has found, and for data stored in chunks of several output
// times the last row of chunks: open it once for a walk through the output times.
using XfGroup = std::unique_ptr<XfGroupState, XfGroupCloser>;

// `path` as the lists of the file give it. What the group holds is checked by the calls that need
// it.
XfStatus XF_OPEN_GROUP(const XfFile& file, const std::string& path, XfGroup& group);

// Closing a group that is not open succeeds.
XfStatus XF_CLOSE_GROUP(XfGroup& group);

// Values per output time (nodes).
XfStatus XF_GET_DATASET_NUMVALS(const XfGroup& group, std::int32_t& count);

// Activity flags per output time (cells); 0 when the dataset has no activity.
XfStatus XF_GET_DATASET_NUMACTIVE(const XfGroup& group, std::int32_t& count);

// The units as the dataset states them ("Hours").
XfStatus XF_GET_DATASET_TIME_UNITS(const XfGroup& group, std::string& units);

XfStatus XF_GET_DATASET_NUM_TIMES(const XfGroup& group, std::int32_t& count);

// All output times, in the dataset's time units.
XfStatus XF_GET_DATASET_TIMES(const XfGroup& group, std::vector<double>& times);

// The arrays are as long as the dataset's number of values; another length is a failure, and so is
// a dataset whose values do not fit its times.
XfStatus XF_READ_SCALAR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> values);
// Vectors as x1 y1 x2 y2 ..., two for each of the values, or taken apart.
XfStatus XF_READ_VECTOR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> pairs);
XfStatus XF_READ_VECTOR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> x, std::span<float> y);

// Receives some of an output time's values, scalars or pairs of components, in order; `first`
// counts them from 0. They stay for the call only, and most are still in the processor's cache.
using XfValueSink = std::function<void(std::size_t first, std::span<const float> values)>;

// The same piece by piece, for what is not kept as it is read. `value_count`: see above.
XfStatus XF_READ_SCALAR_VALUES_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                         std::size_t value_count, const XfValueSink& sink);
XfStatus XF_READ_VECTOR_VALUES_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                         std::size_t value_count, const XfValueSink& sink);

// Flags become 0 or 1. A dataset without activity leaves `flags` alone and succeeds, whatever their
// number.
XfStatus XF_READ_ACTIVITY_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                   std::span<std::int8_t> flags);

// The same piece by piece; `flag_count` is the length of the array above. Without activity the sink
// is not called.
using XfFlagSink = std::function<void(std::size_t first, std::span<const std::int8_t> flags)>;
XfStatus XF_READ_ACTIVITY_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                    std::size_t flag_count, const XfFlagSink& sink);

}  // namespace quillet
