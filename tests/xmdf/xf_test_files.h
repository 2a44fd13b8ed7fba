// Small XMDF files for the tests: made with this library's writer, or with HDF5 directly where
// other writers' shapes are wanted.
#pragma once

#include <gtest/gtest.h>
#include <hdf5.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "xmdf/xf_dataset_reader.h"
#include "xmdf/xf_handle.h"
#include "xmdf/xf_text.h"
#include "xmdf/xf_writer.h"

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
  XfTest() {
    folder_name =
        std::filesystem::temp_directory_path() / ("quillet_xf_" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_name);
  }
  ~XfTest() override { std::filesystem::remove_all(folder_name); }

  std::string path(const std::string& name) const { return (folder_name / name).string(); }

  std::filesystem::path folder_name;
};

inline std::vector<char> bytes_of(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void put_bytes(const std::string& name, std::span<const char> bytes) {
  std::ofstream file(name, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// An XMDF file that holds what `fill` puts into it.
inline void make_file(const std::string& name, const std::function<void(hid_t file)>& fill) {
  const XfFileHandle file(H5Fcreate(name.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
  ASSERT_TRUE(xf_write_text_dataset(file.get(), "File Type", "Xmdf"));
  fill(file.get());
}

inline XfGroupHandle make_group(hid_t parent, const char* name, const char* group_type = nullptr) {
  XfGroupHandle group(H5Gcreate2(parent, name, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  if (group_type != nullptr) {
    EXPECT_TRUE(xf_write_text_attribute(group.get(), "Grouptype", group_type));
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
  const XfPropertiesHandle properties(H5Pcreate(H5P_DATASET_CREATE));
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

constexpr int written_nodes = 100;
constexpr int written_cells = 37;

struct OutputTime {
  double time;
  std::vector<float> x, y;
  std::vector<std::int8_t> flags;
};

inline std::vector<OutputTime> random_output_times(int count) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> real(-5.0F, 5.0F);
  std::vector<OutputTime> outputs(count);
  for (OutputTime& output : outputs) {
    output.time = real(random);
    for (int i = 0; i < written_nodes; ++i) {
      output.x.push_back(real(random));
      output.y.push_back(real(random));
    }
    for (int i = 0; i < written_cells; ++i) output.flags.push_back(random() % 2 != 0);
  }
  return outputs;
}

// One file with the dataset run/Temporal/Depth.
inline void write_outputs(const std::string& name, bool vector, const XfDatasetOptions& options,
                          const std::vector<OutputTime>& outputs) {
  XfFile file;
  XfFolder folder;
  XfDataset dataset;
  ASSERT_OK(XF_CREATE_FILE(name, file));
  ASSERT_OK(XF_CREATE_GENERIC_GROUP(file, "run/Temporal", folder));
  ASSERT_OK(vector ? XF_CREATE_VECTOR_DATASET(folder, "Depth", options, dataset)
                   : XF_CREATE_SCALAR_DATASET(folder, "Depth", options, dataset));
  for (const OutputTime& output : outputs) {
    ASSERT_OK(vector ? XF_WRITE_VECTOR_TIMESTEP(dataset, output.time, output.x, output.y)
                     : XF_WRITE_SCALAR_TIMESTEP(dataset, output.time, output.x));
    ASSERT_OK(XF_WRITE_ACTIVITY_TIMESTEP(dataset, output.flags));
  }
  ASSERT_OK(XF_CLOSE_GROUP(dataset));
  ASSERT_OK(XF_CLOSE_GROUP(folder));
  ASSERT_OK(XF_CLOSE_FILE(file));
}

}  // namespace quillet
