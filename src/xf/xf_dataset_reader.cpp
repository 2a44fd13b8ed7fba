#include "xf/xf_dataset_reader.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <utility>

#include "support/interleave.h"
#include "support/kernel.h"
#include "support/system_files.h"
#include "xf/xf_errors.h"
#include "xf/xf_file_state.h"
#include "xf/xf_group_trial.h"
#include "xf/xf_member.h"
#include "xf/xf_row_reader.h"
#include "xf/xf_text.h"
#include "xf/xf_trial.h"

namespace quillet {

struct XfGroupState {
  std::string file_name;
  XfGroupHandle id;
  XfStoredFile file;
  SystemFile descriptor = no_file;  // of the file, as XfFileState has it
  std::int64_t opened_size = -1;    // likewise
  // Opened when first asked for.
  std::unique_ptr<XfRowReader> values;
  std::unique_ptr<XfRowReader> activity;
  std::vector<std::int8_t> flags;  // some that are handed out
  std::optional<std::vector<double>> times;
};

namespace {

constexpr int scalar_rank = 2;
constexpr int vector_rank = 3;

KERNEL_LOOP void make_zero_or_one(std::int8_t* flags, std::size_t count) {
#pragma omp simd
  for (std::size_t i = 0; i < count; ++i) flags[i] = flags[i] != 0 ? 1 : 0;
}

KERNEL_LOOP void copy_as_zero_or_one(const std::int8_t* flags, std::size_t count,
                                     std::int8_t* copy) {
#pragma omp simd
  for (std::size_t i = 0; i < count; ++i) copy[i] = flags[i] != 0 ? 1 : 0;
}

// Reading what is no longer there gives zeros; a file that grows is being written.
XfStatus check_not_cut(const XfGroupState& group) {
  const std::int64_t size = SYSTEM_FILE_SIZE(group.descriptor);
  if (size < 0 || size >= group.opened_size) return {};
  return XF_FAILURE("the file became smaller while it was read, expected " +
                    std::to_string(group.opened_size) + " bytes, found " + std::to_string(size));
}

// The status of something that was read.
XfStatus with_size_checked(const XfGroupState& group, XfStatus status) {
  XfStatus whole = check_not_cut(group);
  return whole.ok() ? std::move(status) : std::move(whole);
}

XfStatus open_times(const XfGroupState& group, XfRowReader& reader) {
  return reader.open_numbers(group.id.get(), "Times", 1, H5T_NATIVE_DOUBLE, group.file);
}

XfStatus load_times(XfGroupState& group) {
  if (group.times) return {};
  XfRowReader reader;
  XfStatus status = open_times(group, reader);
  if (!status.ok()) return status;
  std::vector<double> times(reader.columns());
  status = with_size_checked(group, reader.read_row(0, reinterpret_cast<std::byte*>(times.data())));
  if (status.ok()) group.times = std::move(times);
  return status;
}

// The rank repeats what Grouptype says.
XfStatus open_values(XfGroupState& group) {
  if (group.values) return {};
  auto reader = std::make_unique<XfRowReader>();
  XfStatus status = reader->open_numbers(group.id.get(), "Values", xf_scalar_or_vector,
                                         H5T_NATIVE_FLOAT, group.file);
  if (status.ok()) group.values = std::move(reader);
  return status;
}

// Leaves the reader empty when the dataset has no activity. A group that cannot be searched is
// damaged: that is not the same as a member that is not there.
XfStatus open_activity(XfGroupState& group) {
  if (group.activity) return {};
  auto reader = std::make_unique<XfRowReader>();
  XfStatus status = reader->open_flags(group.id.get(), "Active", group.file);
  if (status.ok()) {
    group.activity = std::move(reader);
  } else if (xf_look_for_member(group.id.get(), "Active") == XfMember::State::absent) {
    return {};
  }
  return status;
}

// Every member has one row per output time, and the one asked for is among them.
XfStatus check_output_time(XfGroupState& group, const char* name, const XfRowReader& member,
                           std::int32_t output_time) {
  XfStatus status = load_times(group);
  if (!status.ok()) return status;
  const std::size_t count = group.times->size();
  if (member.rows() != count) {
    return XF_FAILURE("Times holds " + std::to_string(count) + " output times, " + name + " " +
                      std::to_string(member.rows()));
  }
  if (output_time >= 1 && static_cast<std::size_t>(output_time) <= count) return {};
  return XF_FAILURE("there is no output time " + std::to_string(output_time) +
                    ", the dataset has " + std::to_string(count));
}

XfStatus prepare_values(XfGroupState& group, int rank, std::int32_t output_time,
                        std::size_t value_count) {
  XfStatus status = open_values(group);
  if (status.ok() && group.values->rank() != rank) {
    status = XF_FAILURE(rank == scalar_rank ? "the dataset is a vector, expected a scalar"
                                            : "the dataset is a scalar, expected a vector");
  }
  if (status.ok()) status = check_output_time(group, "Values", *group.values, output_time);
  if (status.ok()) status = xf_check_count("values", value_count, group.values->columns());
  return status;
}

XfStatus read_row(XfGroupState& group, XfRowReader& member, std::int32_t output_time,
                  void* destination) {
  return with_size_checked(group,
                           member.read_row(output_time - 1, static_cast<std::byte*>(destination)));
}

XfStatus read_in_pieces(XfGroupState& group, int rank, std::int32_t output_time,
                        std::size_t value_count, const XfValueSink& sink) {
  XfStatus status = prepare_values(group, rank, output_time, value_count);
  if (!status.ok()) return status;
  const std::size_t components = rank == vector_rank ? 2 : 1;
  status = group.values->read_row_in_pieces(
      output_time - 1, [&](std::size_t first, std::size_t count, const std::byte* elements) {
        sink(first, {reinterpret_cast<const float*>(elements), components * count});
      });
  return with_size_checked(group, std::move(status));
}

XfStatus read_vector(XfGroupState& group, hsize_t row, float* x, float* y) {
  return group.values->read_row_in_pieces(
      row, [&](std::size_t first, std::size_t count, const std::byte* elements) {
        SEPARATE_COMPONENTS(reinterpret_cast<const float*>(elements),
                            static_cast<std::int64_t>(count), x + first, y + first);
      });
}

// `has_flags` tells whether there are any to be read; an Active without columns is as good as none.
XfStatus prepare_activity(XfGroupState& group, std::int32_t output_time, std::size_t flag_count,
                          bool& has_flags) {
  XfStatus status = open_activity(group);
  if (!group.activity || group.activity->columns() == 0) return status;
  status = check_output_time(group, "Active", *group.activity, output_time);
  if (status.ok()) status = xf_check_count("activity flags", flag_count, group.activity->columns());
  has_flags = status.ok();
  return status;
}

XfStatus read_flags_in_pieces(XfGroupState& group, std::int32_t output_time,
                              const XfFlagSink& sink) {
  constexpr std::size_t most_at_once = std::size_t{64} << 10;
  group.flags.resize(most_at_once);
  return group.activity->read_row_in_pieces(
      output_time - 1, [&](std::size_t first, std::size_t count, const std::byte* elements) {
        for (std::size_t done = 0; done < count; done += most_at_once) {
          const std::size_t part = std::min(most_at_once, count - done);
          Kernel<copy_as_zero_or_one>::run(reinterpret_cast<const std::int8_t*>(elements) + done,
                                           part, group.flags.data());
          sink(first + done, std::span(group.flags).first(part));
        }
      });
}

bool is_first(const XfFileState& file, const std::string& path) {
  if (!file.paths) return false;
  const auto begins_with = [&](const std::vector<std::string>& paths) {
    return !paths.empty() && paths.front() == path;
  };
  return begins_with(file.paths->scalars) || begins_with(file.paths->vectors);
}

XfStatus try_if_left_out(XfFileState& file, const std::string& path) {
  if (file.tried.holds(path) || is_first(file, path)) return {};
  XfStatus status = XF_TRY_FILE(file.opened_name);
  if (status.ok()) file.tried = {};
  return status;
}

XfStatus open_group(const XfFileState& file, const std::string& path, XfGroup& group) {
  XfGroupHandle id(H5Gopen2(file.id.get(), path.c_str(), H5P_DEFAULT));
  if (!id.valid()) return XF_FAILURE("there is no group of this path");
  group.reset(new XfGroupState{});
  group->file_name = file.opened_name;
  group->id = std::move(id);
  group->file = file.stored;
  group->descriptor = file.descriptor;
  group->opened_size = file.opened_size;
  return {};
}

bool close_id(XfGroupState& group) {
  const FileAtRisk reading(group.file_name, xf_fatal_damage);
  return group.id.close();
}

}  // namespace

void XfGroupCloser::operator()(XfGroupState* state) const {
  const std::string file_name = std::move(state->file_name);
  const FileAtRisk reading(file_name, xf_fatal_damage);
  delete state;
}

XfStatus XF_OPEN_GROUP(const XfFile& file, const std::string& path, XfGroup& group) {
  XfStatus status = try_if_left_out(*file, path);
  if (!status.ok()) return status;
  return xf_guard_reading(file->opened_name, [&] { return open_group(*file, path, group); });
}

XfStatus XF_CLOSE_GROUP(XfGroup& group) {
  if (!group) return {};
  const bool closed = close_id(*group);
  group.reset();
  return closed ? XfStatus{} : XF_FAILURE("the group cannot be closed");
}

XfStatus XF_GET_DATASET_NUMVALS(const XfGroup& group, std::int32_t& count) {
  return xf_guard_reading(group->file_name, [&] {
    XfStatus status = open_values(*group);
    if (status.ok()) count = static_cast<std::int32_t>(group->values->columns());
    return status;
  });
}

XfStatus XF_GET_DATASET_NUMACTIVE(const XfGroup& group, std::int32_t& count) {
  count = 0;
  return xf_guard_reading(group->file_name, [&] {
    XfStatus status = open_activity(*group);
    if (group->activity) count = static_cast<std::int32_t>(group->activity->columns());
    return status;
  });
}

XfStatus XF_GET_DATASET_TIME_UNITS(const XfGroup& group, std::string& units) {
  const FileAtRisk reading(group->file_name, xf_fatal_damage);
  const std::optional<std::string> text = xf_attribute_text(group->id.get(), "TimeUnits");
  if (!text) return XF_FAILURE("TimeUnits is missing or no text");
  units = *text;
  return {};
}

XfStatus XF_GET_DATASET_NUM_TIMES(const XfGroup& group, std::int32_t& count) {
  return xf_guard_reading(group->file_name, [&] {
    XfStatus status = load_times(*group);
    if (status.ok()) count = static_cast<std::int32_t>(group->times->size());
    return status;
  });
}

XfStatus XF_GET_DATASET_TIMES(const XfGroup& group, std::vector<double>& times) {
  return xf_guard_reading(group->file_name, [&] {
    XfStatus status = load_times(*group);
    if (status.ok()) times = *group->times;
    return status;
  });
}

XfStatus XF_READ_SCALAR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> values) {
  return xf_guard_reading(group->file_name, [&] {
    XfStatus status = prepare_values(*group, scalar_rank, output_time, values.size());
    if (!status.ok()) return status;
    return read_row(*group, *group->values, output_time, values.data());
  });
}

XfStatus XF_READ_VECTOR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> pairs) {
  return xf_guard_reading(group->file_name, [&] {
    XfStatus status = prepare_values(*group, vector_rank, output_time, pairs.size() / 2);
    if (!status.ok()) return status;
    return read_row(*group, *group->values, output_time, pairs.data());
  });
}

XfStatus XF_READ_VECTOR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> x, std::span<float> y) {
  return xf_guard_reading(group->file_name, [&] {
    XfStatus status = prepare_values(*group, vector_rank, output_time, x.size());
    if (status.ok()) status = xf_check_count("y components", x.size(), y.size());
    if (!status.ok()) return status;
    return with_size_checked(*group, read_vector(*group, output_time - 1, x.data(), y.data()));
  });
}

XfStatus XF_READ_SCALAR_VALUES_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                         std::size_t value_count, const XfValueSink& sink) {
  return xf_guard_reading(group->file_name, [&] {
    return read_in_pieces(*group, scalar_rank, output_time, value_count, sink);
  });
}

XfStatus XF_READ_VECTOR_VALUES_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                         std::size_t value_count, const XfValueSink& sink) {
  return xf_guard_reading(group->file_name, [&] {
    return read_in_pieces(*group, vector_rank, output_time, value_count, sink);
  });
}

XfStatus XF_READ_ACTIVITY_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                   std::span<std::int8_t> flags) {
  return xf_guard_reading(group->file_name, [&] {
    bool has_flags = false;
    XfStatus status = prepare_activity(*group, output_time, flags.size(), has_flags);
    if (!has_flags) return status;
    status = read_row(*group, *group->activity, output_time, flags.data());
    Kernel<make_zero_or_one>::run(flags.data(), flags.size());
    return status;
  });
}

XfStatus XF_READ_ACTIVITY_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                    std::size_t flag_count, const XfFlagSink& sink) {
  return xf_guard_reading(group->file_name, [&] {
    bool has_flags = false;
    XfStatus status = prepare_activity(*group, output_time, flag_count, has_flags);
    if (!has_flags) return status;
    return with_size_checked(*group, read_flags_in_pieces(*group, output_time, sink));
  });
}

void xf_try_group(const XfGroup& group) {
  std::string units;
  std::int32_t count = 0;
  std::ignore = XF_GET_DATASET_TIME_UNITS(group, units);
  std::ignore = XF_GET_DATASET_NUMVALS(group, count);
  std::ignore = XF_GET_DATASET_NUMACTIVE(group, count);
  std::ignore = xf_guard_memory([&] {
    XfRowReader times;
    XfStatus status = open_times(*group, times);
    return status.ok() && times.transforms() ? load_times(*group) : status;
  });
}

}  // namespace quillet
