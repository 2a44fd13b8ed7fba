#include "xf/xf_writer.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "support/kernel.h"
#include "xf/xf_errors.h"
#include "xf/xf_file_state.h"
#include "xf/xf_table_writer.h"
#include "xf/xf_text.h"

namespace quillet {

struct XfFolderState {
  XfGroupHandle id;
};

struct XfDatasetWriterState {
  XfGroupHandle id;
  hsize_t components = 1;
  std::size_t expected_values = 0;
  XfStorage storage;
  XfTableWriter values;
  XfTableWriter activity;
  std::vector<double> times;
  std::vector<float> smallest;
  std::vector<float> largest;
};

namespace {

KERNEL_LOOP bool are_zero_or_one(const std::int8_t* flags, std::size_t count) {
  unsigned char bits = 0;
#pragma omp simd reduction(| : bits)
  for (std::size_t i = 0; i < count; ++i) bits |= static_cast<unsigned char>(flags[i]);
  return bits <= 1;
}

KERNEL_LOOP void copy_zero_or_one(const std::int8_t* flags, std::size_t count,
                                  unsigned char* copy) {
#pragma omp simd
  for (std::size_t i = 0; i < count; ++i) copy[i] = flags[i] != 0 ? 1 : 0;
}

XfStatus create_group(hid_t parent, const std::string& name, const char* group_type,
                      XfGroupHandle& group) {
  const XfPropertiesHandle properties(H5Pcreate(H5P_GROUP_CREATE));
  H5Pset_obj_track_times(properties.get(), false);
  group =
      XfGroupHandle(H5Gcreate2(parent, name.c_str(), H5P_DEFAULT, properties.get(), H5P_DEFAULT));
  if (!group.valid()) return xf_hdf5_failure("the group cannot be written");
  return xf_write_text_attribute(group.get(), "Grouptype", group_type);
}

// One level of a path, from the group above it. Fails when it stands for something else, or cannot
// be made.
XfStatus enter_group(const std::string& name, XfGroupHandle& group) {
  XfGroupHandle above = std::move(group);
  XfStatus status;
  if (H5Lexists(above.get(), name.c_str(), H5P_DEFAULT) == 0) {
    status = create_group(above.get(), name, "GENERIC", group);
  } else {
    group = XfGroupHandle(H5Gopen2(above.get(), name.c_str(), H5P_DEFAULT));
    if (!group.valid()) status = xf_hdf5_failure("the group cannot be made");
  }
  if (status.ok() && !above.close()) status = xf_hdf5_failure("a group cannot be closed");
  return status;
}

XfStatus not_closed() {
  return xf_hdf5_failure("the group cannot be closed");
}

XfStatus check_options(const XfDatasetOptions& options) {
  if (options.compression < 0 || options.compression > 9) {
    return XF_FAILURE("expected a compression level of 0 to 9, found " +
                      std::to_string(options.compression));
  }
  const bool sizes_fit = options.expected_times >= 0 && options.times_per_chunk >= 1;
  return sizes_fit ? XfStatus{} : XF_FAILURE("expected positive numbers of output times");
}

XfStatus write_attributes(hid_t group, const XfDatasetOptions& options) {
  constexpr int real_values = 0;
  XfStatus status = xf_write_integer_attribute(group, "Data Type", real_values);
  if (status.ok()) {
    status = xf_write_integer_attribute(group, "DatasetCompression", options.compression);
  }
  if (status.ok()) status = xf_write_text_attribute(group, "DatasetUnits", options.units);
  if (status.ok()) status = xf_write_text_attribute(group, "TimeUnits", options.time_units);
  return status;
}

XfStatus create_dataset(const XfFolder& folder, const std::string& name, hsize_t components,
                        const XfDatasetOptions& options, XfDatasetWriter& dataset) {
  XfStatus status = check_options(options);
  if (!status.ok()) return status;
  if (name.empty() || name.find('/') != std::string::npos) return XF_FAILURE("unusable name");
  if (H5Lexists(folder->id.get(), name.c_str(), H5P_DEFAULT) > 0) {
    return XF_FAILURE("the name is already used");
  }
  const char* const type = components == 1 ? "DATASET SCALAR" : "DATASET VECTOR";
  XfGroupHandle group;
  status = create_group(folder->id.get(), name, type, group);
  if (status.ok()) status = write_attributes(group.get(), options);
  if (!status.ok()) return status;
  dataset.reset(new XfDatasetWriterState{});
  dataset->id = std::move(group);
  dataset->components = components;
  dataset->expected_values = static_cast<std::size_t>(std::max(options.expected_values, 0));
  dataset->storage = {options.compression, static_cast<hsize_t>(options.expected_times),
                      static_cast<hsize_t>(options.times_per_chunk)};
  return {};
}

// Makes what is missing of the path.
XfStatus enter_folder(const XfFileState& file, const std::string& path, XfFolder& folder) {
  XfGroupHandle group(H5Gopen2(file.id.get(), "/", H5P_DEFAULT));
  std::string_view rest = path;
  XfStatus status = group.valid() ? XfStatus{} : xf_hdf5_failure("the file cannot be written");
  while (status.ok() && !rest.empty()) {
    const std::size_t slash = rest.find('/');
    const std::string level(rest.substr(0, slash));
    if (!level.empty()) status = enter_group(level, group);
    rest = slash == std::string_view::npos ? std::string_view{} : rest.substr(slash + 1);
  }
  if (status.ok()) folder.reset(new XfFolderState{std::move(group)});
  return status;
}

// Creates `Values` when this is the first output time.
XfStatus prepare_values(XfDatasetWriterState& dataset, std::size_t count) {
  if (dataset.values.created()) return xf_check_count("values", dataset.values.columns(), count);
  return dataset.values.create(dataset.id.get(), "Values", H5T_IEEE_F32LE, count,
                               dataset.components, dataset.storage);
}

XfStatus write_values(XfDatasetWriterState& dataset, hsize_t components, double time,
                      std::span<const float> values, const XfRange& range) {
  XfStatus status = xf_check_count("components", dataset.components, components);
  if (status.ok()) status = xf_check_count("values left over", 0, values.size() % components);
  if (status.ok()) status = prepare_values(dataset, values.size() / components);
  if (!status.ok()) return status;
  dataset.times.push_back(time);
  dataset.smallest.push_back(range.smallest);
  dataset.largest.push_back(range.largest);
  return dataset.values.write_row(reinterpret_cast<const std::byte*>(values.data()));
}

XfStatus write_activity(XfDatasetWriterState& dataset, std::span<const std::int8_t> flags) {
  XfTableWriter& activity = dataset.activity;
  XfStatus status = activity.created()
                        ? xf_check_count("activity flags", activity.columns(), flags.size())
                        : activity.create(dataset.id.get(), "Active", H5T_STD_U8LE, flags.size(), 1,
                                          dataset.storage);
  if (status.ok()) {
    status =
        xf_check_count("output times with activity", dataset.times.size(), activity.rows() + 1);
  }
  if (!status.ok()) return status;
  if (Kernel<are_zero_or_one>::run(flags.data(), flags.size())) {
    return activity.write_row(reinterpret_cast<const std::byte*>(flags.data()));
  }
  std::byte* const row = activity.next_row();
  Kernel<copy_zero_or_one>::run(flags.data(), flags.size(), reinterpret_cast<unsigned char*>(row));
  return activity.write_row(row);
}

XfStatus complete_tables(XfDatasetWriterState& dataset) {
  if (!dataset.values.created()) {
    // No output time was written.
    dataset.storage.expected_rows = 0;
    XfStatus status = prepare_values(dataset, dataset.expected_values);
    if (!status.ok()) return status;
  }
  XfStatus status = dataset.values.complete();
  if (!status.ok() || !dataset.activity.created()) return status;
  status =
      xf_check_count("output times with activity", dataset.times.size(), dataset.activity.rows());
  return status.ok() ? dataset.activity.complete() : status;
}

// Readers look into the first of Mins and Maxs without asking whether there is one.
XfStatus write_all_series(const XfDatasetWriterState& dataset) {
  const hid_t group = dataset.id.get();
  const int compression = dataset.storage.compression;
  const hsize_t count = dataset.times.size();
  XfStatus status = xf_write_series(group, "Times", H5T_IEEE_F64LE, H5T_NATIVE_DOUBLE,
                                    dataset.times.data(), count, compression);
  if (!status.ok() || count == 0) return status;
  status = xf_write_series(group, "Mins", H5T_IEEE_F32LE, H5T_NATIVE_FLOAT, dataset.smallest.data(),
                           count, compression);
  if (!status.ok()) return status;
  return xf_write_series(group, "Maxs", H5T_IEEE_F32LE, H5T_NATIVE_FLOAT, dataset.largest.data(),
                         count, compression);
}

}  // namespace

void XfFolderCloser::operator()(XfFolderState* state) const {
  delete state;
}
void XfDatasetWriterCloser::operator()(XfDatasetWriterState* state) const {
  delete state;
}

XfStatus XF_CREATE_GENERIC_GROUP(const XfFile& file, const std::string& path, XfFolder& folder) {
  return xf_guard_memory([&] { return enter_folder(*file, path, folder); });
}

XfStatus XF_CREATE_SCALAR_DATASET(const XfFolder& folder, const std::string& name,
                                  const XfDatasetOptions& options, XfDatasetWriter& dataset) {
  return xf_guard_memory([&] { return create_dataset(folder, name, 1, options, dataset); });
}

XfStatus XF_CREATE_VECTOR_DATASET(const XfFolder& folder, const std::string& name,
                                  const XfDatasetOptions& options, XfDatasetWriter& dataset) {
  return xf_guard_memory([&] { return create_dataset(folder, name, 2, options, dataset); });
}

XfStatus XF_WRITE_SCALAR_TIMESTEP(const XfDatasetWriter& dataset, double time,
                                  std::span<const float> values, const XfRange& range) {
  return xf_guard_memory([&] { return write_values(*dataset, 1, time, values, range); });
}

XfStatus XF_WRITE_VECTOR_TIMESTEP(const XfDatasetWriter& dataset, double time,
                                  std::span<const float> pairs, const XfRange& range) {
  return xf_guard_memory([&] { return write_values(*dataset, 2, time, pairs, range); });
}

XfStatus XF_WRITE_ACTIVITY_TIMESTEP(const XfDatasetWriter& dataset,
                                    std::span<const std::int8_t> flags) {
  if (flags.empty()) {
    return xf_check_count("activity flags", dataset->activity.columns(), 0);
  }
  return xf_guard_memory([&] { return write_activity(*dataset, flags); });
}

XfStatus XF_CLOSE_GROUP(XfDatasetWriter& dataset) {
  if (!dataset) return {};
  XfStatus status = xf_guard_memory([&] {
    XfStatus completed = complete_tables(*dataset);
    if (completed.ok()) completed = write_all_series(*dataset);
    if (completed.ok() && !dataset->id.close()) completed = not_closed();
    return completed;
  });
  dataset.reset();
  return status;
}

XfStatus XF_CLOSE_GROUP(XfFolder& folder) {
  if (!folder) return {};
  XfStatus status = folder->id.close() ? XfStatus{} : not_closed();
  folder.reset();
  return status;
}

}  // namespace quillet
