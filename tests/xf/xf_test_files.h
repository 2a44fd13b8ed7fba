// Parts of XMDF files for the tests, made with HDF5 directly.
#pragma once

#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "program_runner.h"
#include "xf/xf_dataset_reader.h"
#include "xf/xf_handle.h"
#include "xf/xf_text.h"
#include "xf/xf_writer.h"

namespace quillet {

// A success has no reason.
#define EXPECT_OK(operation) EXPECT_EQ((operation).reason, "")
#define ASSERT_OK(operation) ASSERT_EQ((operation).reason, "")

// The operation fails, and its reason holds the text.
inline void expect_failure(const XfStatus& status, const std::string& text) {
  EXPECT_FALSE(status.ok());
  EXPECT_NE(status.reason.find(text), std::string::npos) << "reason: " << status.reason;
}

class XfTest : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder.path(name).string(); }

  testing::Workspace folder;
};

// Equal files have equal bytes, whenever they are made.
inline XfPropertiesHandle without_times(hid_t object_class) {
  XfPropertiesHandle properties(H5Pcreate(object_class));
  H5Pset_obj_track_times(properties.get(), false);
  return properties;
}

// An XMDF file that holds what `fill` puts into it.
inline void make_file(const std::string& name, const std::function<void(hid_t file)>& fill) {
  const XfPropertiesHandle properties = without_times(H5P_FILE_CREATE);
  const XfFileHandle file(H5Fcreate(name.c_str(), H5F_ACC_TRUNC, properties.get(), H5P_DEFAULT));
  ASSERT_EQ(xf_write_text_dataset(file.get(), "File Type", "Xmdf").reason, "");
  fill(file.get());
}

inline XfGroupHandle make_group(hid_t parent, const char* name, const char* group_type = nullptr) {
  const XfPropertiesHandle properties = without_times(H5P_GROUP_CREATE);
  XfGroupHandle group(H5Gcreate2(parent, name, H5P_DEFAULT, properties.get(), H5P_DEFAULT));
  if (group_type != nullptr) {
    EXPECT_EQ(xf_write_text_attribute(group.get(), "Grouptype", group_type).reason, "");
  }
  return group;
}

// How a member is stored; an empty chunk means contiguous.
struct Shape {
  std::vector<hsize_t> extents;
  std::vector<hsize_t> chunk;
  std::function<void(hid_t properties)> more;
};

// Writes nothing when there are no values.
template <typename Value>
XfDatasetHandle make_member(hid_t group, const char* name, hid_t stored, const Shape& shape,
                            hid_t memory, const std::vector<Value>& values) {
  const auto rank = static_cast<int>(shape.extents.size());
  std::vector<hsize_t> largest(shape.extents);
  if (!shape.chunk.empty()) largest.assign(largest.size(), H5S_UNLIMITED);
  const XfSpaceHandle space(H5Screate_simple(rank, shape.extents.data(), largest.data()));
  const XfPropertiesHandle properties = without_times(H5P_DATASET_CREATE);
  if (!shape.chunk.empty()) H5Pset_chunk(properties.get(), rank, shape.chunk.data());
  if (shape.more) shape.more(properties.get());
  XfDatasetHandle dataset(
      H5Dcreate2(group, name, stored, space.get(), H5P_DEFAULT, properties.get(), H5P_DEFAULT));
  EXPECT_TRUE(dataset.valid());
  if (!values.empty()) {
    EXPECT_GE(H5Dwrite(dataset.get(), memory, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), 0);
  }
  return dataset;
}

inline void make_times(hid_t group, const std::vector<double>& times) {
  make_member(group, "Times", H5T_IEEE_F64LE, {{times.size()}, {10}, {}}, H5T_NATIVE_DOUBLE, times);
}

// Values (1, 2, 3 ...) in every member: enough to be recognised as a dataset.
inline void make_plain_dataset(hid_t parent, const char* name, const char* group_type,
                               std::vector<hsize_t> extents) {
  const XfGroupHandle group = make_group(parent, name, group_type);
  make_times(group.get(), std::vector<double>(extents[0], 0.0));
  hsize_t count = 1;
  for (const hsize_t extent : extents) count *= extent;
  make_member(group.get(), "Values", H5T_IEEE_F32LE, {std::move(extents), {}, {}}, H5T_NATIVE_FLOAT,
              std::vector<float>(count, 1.0F));
}

}  // namespace quillet
