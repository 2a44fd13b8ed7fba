// Whole XMDF files for runs of the program, made and read with HDF5 itself. An output time looks as
// in a .dat file, so that both formats can hold the same data.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "dat_builder.h"
#include "program_runner.h"
#include "xf/xf_test_files.h"

namespace quillet::testing {

struct XmdfData {
  std::string path;  // "run1/Temporal/Depth"
  DatShape shape;
  std::vector<DatTime> times;  // without statuses in the first one, the dataset has no Active
};

// As engines write, unless told otherwise.
struct XmdfForm {
  hsize_t chunk_times = 1;  // 0: contiguous
  hsize_t chunk_nodes = 0;  // 0: all
  void (*filters)(hid_t properties) = nullptr;
  bool has_group_types = true;
  bool has_short_times = false;  // 32-bit
  const char* time_units = "Hours";
};

inline Shape XMDF_SHAPE(const XmdfForm& form, std::vector<hsize_t> extents) {
  Shape shape{extents, {}, form.filters};
  if (form.chunk_times == 0) return shape;
  shape.chunk = extents;
  shape.chunk[0] = form.chunk_times;
  if (form.chunk_nodes > 0) shape.chunk[1] = std::min(form.chunk_nodes, extents[1]);
  return shape;
}

// Makes every missing group of the path.
inline XfGroupHandle XMDF_GROUP(hid_t file, const std::string& path, const XmdfForm& form,
                                const char* group_type) {
  for (auto slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
    const std::string folder = path.substr(0, slash);
    if (H5Lexists(file, folder.c_str(), H5P_DEFAULT) > 0) continue;
    make_group(file, folder.c_str(), form.has_group_types ? "GENERIC" : nullptr);
  }
  XfGroupHandle group = make_group(file, path.c_str(), form.has_group_types ? group_type : nullptr);
  EXPECT_EQ(xf_write_text_attribute(group.get(), "TimeUnits", form.time_units).reason, "");
  return group;
}

inline void ADD_XMDF_DATASET(hid_t file, const XmdfData& data, const XmdfForm& form) {
  const auto& [nodes, cells, is_vector] = data.shape;
  const XfGroupHandle group =
      XMDF_GROUP(file, data.path, form, is_vector ? "DATASET VECTOR" : "DATASET SCALAR");
  std::vector<double> times;
  std::vector<float> values;
  std::vector<int> flags;
  for (const DatTime& time : data.times) {
    times.push_back(time.time);
    values.insert(values.end(), time.values.begin(), time.values.end());
    flags.insert(flags.end(), time.statuses.begin(), time.statuses.end());
  }
  const hsize_t count = times.size();
  make_member(group.get(), "Times", form.has_short_times ? H5T_IEEE_F32LE : H5T_IEEE_F64LE,
              {{count}, {10}, {}}, H5T_NATIVE_DOUBLE, times);
  std::vector<hsize_t> extents{count, static_cast<hsize_t>(nodes)};
  if (is_vector) extents.push_back(2);
  make_member(group.get(), "Values", H5T_IEEE_F32LE, XMDF_SHAPE(form, extents), H5T_NATIVE_FLOAT,
              values);
  if (flags.empty()) return;
  make_member(group.get(), "Active", H5T_STD_U8LE,
              XMDF_SHAPE(form, {count, static_cast<hsize_t>(cells)}), H5T_NATIVE_INT, flags);
}

inline void MAKE_XMDF(const Workspace& folder, const std::string& name,
                      const std::vector<XmdfData>& datasets, const XmdfForm& form = {}) {
  make_file(folder.path(name).string(), [&](hid_t file) {
    const float version = 2.1F;
    make_member(file, "File Version", H5T_IEEE_F32LE, {{1}, {}, {}}, H5T_NATIVE_FLOAT,
                std::vector<float>{version});
    for (const XmdfData& data : datasets) ADD_XMDF_DATASET(file, data, form);
  });
}

template <typename Value>
std::vector<Value> XMDF_MEMBER(hid_t group, const char* name, hid_t type) {
  const XfDatasetHandle dataset(H5Dopen2(group, name, H5P_DEFAULT));
  if (!dataset.valid()) return {};
  const XfSpaceHandle space(H5Dget_space(dataset.get()));
  std::vector<Value> values(static_cast<std::size_t>(H5Sget_simple_extent_npoints(space.get())));
  EXPECT_GE(H5Dread(dataset.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
  return values;
}

// The output times of a dataset; none, and a failed test, when it is not there.
inline std::vector<DatTime> READ_XMDF(const Workspace& folder, const std::string& name,
                                      const std::string& path) {
  const XfFileHandle file(H5Fopen(folder.path(name).c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
  EXPECT_TRUE(file.valid()) << name;
  const XfGroupHandle group(file.valid() ? H5Gopen2(file.get(), path.c_str(), H5P_DEFAULT)
                                         : H5I_INVALID_HID);
  EXPECT_TRUE(group.valid()) << path;
  if (!group.valid()) return {};
  const auto times = XMDF_MEMBER<float>(group.get(), "Times", H5T_NATIVE_FLOAT);
  const auto values = XMDF_MEMBER<float>(group.get(), "Values", H5T_NATIVE_FLOAT);
  const auto flags = XMDF_MEMBER<int>(group.get(), "Active", H5T_NATIVE_INT);
  const auto row = [&](const auto& all, std::size_t i) {
    const auto length = static_cast<std::ptrdiff_t>(all.size() / times.size());
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(i) * length;
    return std::vector(first, first + length);
  };
  std::vector<DatTime> result;
  for (std::size_t i = 0; i < times.size(); ++i) {
    result.push_back({times[i], row(flags, i), row(values, i)});
  }
  return result;
}

}  // namespace quillet::testing
