#include "xf/xf_dataset_reader.h"

#include <algorithm>
#include <optional>

#include "support/interleave.h"
#include "support/kernel.h"
#include "xf/xf_errors.h"
#include "xf/xf_file_state.h"
#include "xf/xf_row_reader.h"
#include "xf/xf_text.h"

namespace quillet {

struct XfGroupState {
  XfGroupHandle id;
  hsize_t file_size = 0;
  // Opened when first asked for.
  std::unique_ptr<XfRowReader> values;
  int values_rank = 0;
  std::unique_ptr<XfRowReader> activity;
  std::optional<std::vector<double>> times;
};

namespace {

constexpr int scalar_rank = 2;
constexpr int vector_rank = 3;

KERNEL_LOOP void make_zero_or_one(std::int8_t* flags, std::size_t count) {
#pragma omp simd
  for (std::size_t i = 0; i < count; ++i) flags[i] = flags[i] != 0 ? 1 : 0;
}

// Sets `exists`. A group that cannot be searched is damaged: that is not the same as a member that
// is not there.
XfStatus look_for_member(const XfGroupState& group, const char* name, bool& exists) {
  const htri_t found = H5Lexists(group.id.get(), name, H5P_DEFAULT);
  exists = found > 0;
  return found >= 0 ? XfStatus{} : XF_FAILURE("the group is damaged");
}

// Soft and external links are not followed.
XfStatus check_member(const XfGroupState& group, const char* name) {
  bool exists = false;
  XfStatus status = look_for_member(group, name, exists);
  if (!status.ok()) return status;
  if (!exists) return XF_FAILURE(std::string(name) + " is missing");
  H5L_info_t link{};
  H5O_info_t object{};
  const bool is_dataset =
      H5Lget_info(group.id.get(), name, &link, H5P_DEFAULT) >= 0 && link.type == H5L_TYPE_HARD &&
      H5Oget_info_by_name2(group.id.get(), name, &object, H5O_INFO_BASIC, H5P_DEFAULT) >= 0 &&
      object.type == H5O_TYPE_DATASET;
  return is_dataset ? XfStatus{} : XF_FAILURE(std::string(name) + " is damaged or no dataset");
}

XfStatus load_times(XfGroupState& group) {
  if (group.times) return {};
  XfStatus status = check_member(group, "Times");
  XfRowReader reader;
  if (status.ok()) {
    status = reader.open_numbers(group.id.get(), "Times", 1, H5T_NATIVE_DOUBLE, group.file_size);
  }
  if (!status.ok()) return status;
  std::vector<double> times(reader.columns());
  status = reader.read_row(0, reinterpret_cast<std::byte*>(times.data()));
  if (status.ok()) group.times = std::move(times);
  return status;
}

// The rank of Values, which Grouptype repeats.
int rank_of_values(const XfGroupState& group) {
  const XfDatasetHandle dataset(H5Dopen2(group.id.get(), "Values", H5P_DEFAULT));
  const XfSpaceHandle space(dataset.valid() ? H5Dget_space(dataset.get()) : H5I_INVALID_HID);
  return space.valid() ? H5Sget_simple_extent_ndims(space.get()) : 0;
}

XfStatus open_values(XfGroupState& group) {
  if (group.values) return {};
  XfStatus status = check_member(group, "Values");
  if (!status.ok()) return status;
  const int rank = rank_of_values(group) == vector_rank ? vector_rank : scalar_rank;
  auto reader = std::make_unique<XfRowReader>();
  status = reader->open_numbers(group.id.get(), "Values", rank, H5T_NATIVE_FLOAT, group.file_size);
  if (!status.ok()) return status;
  group.values = std::move(reader);
  group.values_rank = rank;
  return {};
}

// Leaves the reader empty when the dataset has no activity.
XfStatus open_activity(XfGroupState& group) {
  if (group.activity) return {};
  bool exists = false;
  XfStatus status = look_for_member(group, "Active", exists);
  if (!status.ok() || !exists) return status;
  status = check_member(group, "Active");
  if (!status.ok()) return status;
  auto reader = std::make_unique<XfRowReader>();
  status = reader->open_flags(group.id.get(), "Active", group.file_size);
  if (status.ok()) group.activity = std::move(reader);
  return status;
}

XfStatus check_count(const char* what, std::size_t expected, hsize_t found) {
  if (expected == found) return {};
  return XF_FAILURE("expected " + std::to_string(expected) + " " + what + ", found " +
                    std::to_string(found));
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
  if (status.ok() && group.values_rank != rank) {
    status = XF_FAILURE(rank == scalar_rank ? "the dataset is a vector, expected a scalar"
                                            : "the dataset is a scalar, expected a vector");
  }
  if (status.ok()) status = check_output_time(group, "Values", *group.values, output_time);
  if (status.ok()) status = check_count("values", value_count, group.values->columns());
  return status;
}

XfStatus read_in_pieces(XfGroupState& group, int rank, std::int32_t output_time,
                        std::size_t value_count, const XfValueSink& sink) {
  XfStatus status = prepare_values(group, rank, output_time, value_count);
  if (!status.ok()) return status;
  const std::size_t components = rank == vector_rank ? 2 : 1;
  return group.values->read_row_in_pieces(
      output_time - 1, [&](std::size_t first, std::size_t count, const std::byte* elements) {
        sink(first, {reinterpret_cast<const float*>(elements), components * count});
      });
}

XfStatus read_vector(XfGroupState& group, hsize_t row, float* x, float* y) {
  return group.values->read_row_in_pieces(
      row, [&](std::size_t first, std::size_t count, const std::byte* elements) {
        SEPARATE_COMPONENTS(reinterpret_cast<const float*>(elements),
                            static_cast<std::int64_t>(count), x + first, y + first);
      });
}

}  // namespace

void XfGroupCloser::operator()(XfGroupState* state) const {
  delete state;
}

XfStatus XF_OPEN_GROUP(const XfFile& file, const std::string& path, XfGroup& group) {
  XfGroupHandle id(H5Gopen2(file->id.get(), path.c_str(), H5P_DEFAULT));
  if (!id.valid()) return XF_FAILURE("there is no group of this path");
  hsize_t size = 0;
  if (H5Fget_filesize(file->id.get(), &size) < 0) return XF_FAILURE("the file has no size");
  group.reset(new XfGroupState{});
  group->id = std::move(id);
  group->file_size = size;
  return {};
}

XfStatus XF_CLOSE_GROUP(XfGroup& group) {
  if (!group) return {};
  const bool closed = group->id.close();
  group.reset();
  return closed ? XfStatus{} : XF_FAILURE("the group cannot be closed");
}

XfStatus XF_GET_DATASET_NUMVALS(const XfGroup& group, std::int32_t& count) {
  return xf_guard_memory([&] {
    XfStatus status = open_values(*group);
    if (status.ok()) count = static_cast<std::int32_t>(group->values->columns());
    return status;
  });
}

XfStatus XF_GET_DATASET_NUMACTIVE(const XfGroup& group, std::int32_t& count) {
  count = 0;
  return xf_guard_memory([&] {
    XfStatus status = open_activity(*group);
    if (group->activity) count = static_cast<std::int32_t>(group->activity->columns());
    return status;
  });
}

XfStatus XF_GET_DATASET_TIME_UNITS(const XfGroup& group, std::string& units) {
  const std::optional<std::string> text = xf_attribute_text(group->id.get(), "TimeUnits");
  if (!text) return XF_FAILURE("TimeUnits is missing or no text");
  units = *text;
  return {};
}

XfStatus XF_GET_DATASET_NUM_TIMES(const XfGroup& group, std::int32_t& count) {
  return xf_guard_memory([&] {
    XfStatus status = load_times(*group);
    if (status.ok()) count = static_cast<std::int32_t>(group->times->size());
    return status;
  });
}

XfStatus XF_GET_DATASET_TIMES(const XfGroup& group, std::vector<double>& times) {
  return xf_guard_memory([&] {
    XfStatus status = load_times(*group);
    if (status.ok()) times = *group->times;
    return status;
  });
}

XfStatus XF_READ_SCALAR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> values) {
  return xf_guard_memory([&] {
    XfStatus status = prepare_values(*group, scalar_rank, output_time, values.size());
    if (!status.ok()) return status;
    return group->values->read_row(output_time - 1, reinterpret_cast<std::byte*>(values.data()));
  });
}

XfStatus XF_READ_VECTOR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> pairs) {
  return xf_guard_memory([&] {
    XfStatus status = prepare_values(*group, vector_rank, output_time, pairs.size() / 2);
    if (!status.ok()) return status;
    return group->values->read_row(output_time - 1, reinterpret_cast<std::byte*>(pairs.data()));
  });
}

XfStatus XF_READ_VECTOR_VALUES_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                        std::span<float> x, std::span<float> y) {
  return xf_guard_memory([&] {
    XfStatus status = prepare_values(*group, vector_rank, output_time, x.size());
    if (status.ok()) status = check_count("y components", x.size(), y.size());
    return status.ok() ? read_vector(*group, output_time - 1, x.data(), y.data()) : status;
  });
}

XfStatus XF_READ_SCALAR_VALUES_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                         std::size_t value_count, const XfValueSink& sink) {
  return xf_guard_memory(
      [&] { return read_in_pieces(*group, scalar_rank, output_time, value_count, sink); });
}

XfStatus XF_READ_VECTOR_VALUES_IN_PIECES(const XfGroup& group, std::int32_t output_time,
                                         std::size_t value_count, const XfValueSink& sink) {
  return xf_guard_memory(
      [&] { return read_in_pieces(*group, vector_rank, output_time, value_count, sink); });
}

XfStatus XF_READ_ACTIVITY_TIMESTEP(const XfGroup& group, std::int32_t output_time,
                                   std::span<std::int8_t> flags) {
  return xf_guard_memory([&] {
    XfStatus status = open_activity(*group);
    // An Active without columns is as good as none.
    if (!group->activity || group->activity->columns() == 0) return status;
    status = check_output_time(*group, "Active", *group->activity, output_time);
    if (status.ok())
      status = check_count("activity flags", flags.size(), group->activity->columns());
    if (!status.ok()) return status;
    status = group->activity->read_row(output_time - 1, reinterpret_cast<std::byte*>(flags.data()));
    Kernel<make_zero_or_one>::run(flags.data(), flags.size());
    return status;
  });
}

}  // namespace quillet
