#include "xmdf/xf_writer.h"

#include <sys/resource.h>

#include <cmath>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <tuple>

#include "xf_test_files.h"

namespace quillet {
namespace {

std::vector<double> numbers_of(const std::string& file_name, const char* member) {
  const XfFileHandle file(H5Fopen(file_name.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
  const XfDatasetHandle dataset(H5Dopen2(file.get(), member, H5P_DEFAULT));
  const XfSpaceHandle space(H5Dget_space(dataset.get()));
  std::vector<double> numbers(H5Sget_simple_extent_npoints(space.get()));
  EXPECT_GE(
      H5Dread(dataset.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers.data()), 0);
  return numbers;
}

struct Extents {
  std::vector<hsize_t> now, largest, chunk;
  bool operator==(const Extents&) const = default;
};

Extents extents_of(hid_t group, const char* member) {
  const XfDatasetHandle dataset(H5Dopen2(group, member, H5P_DEFAULT));
  const XfSpaceHandle space(H5Dget_space(dataset.get()));
  const XfPropertiesHandle properties(H5Dget_create_plist(dataset.get()));
  const std::vector<hsize_t> none(H5Sget_simple_extent_ndims(space.get()));
  Extents extents{none, none, none};
  H5Sget_simple_extent_dims(space.get(), extents.now.data(), extents.largest.data());
  H5Pget_chunk(properties.get(), static_cast<int>(none.size()), extents.chunk.data());
  return extents;
}

class XfRoundTripTest : public XfTest,
                        public ::testing::WithParamInterface<std::tuple<bool, int, int, int>> {};

TEST_P(XfRoundTripTest, EveryValueComesBack) {
  const auto [vector, compression, times_per_chunk, expected_times] = GetParam();
  XfDatasetOptions options;
  options.compression = compression;
  options.times_per_chunk = times_per_chunk;
  options.expected_times = expected_times;
  const std::vector<OutputTime> outputs = random_output_times(7);
  write_outputs(path("r.xmdf"), vector, options, outputs);

  XfFile file;
  XfGroup group;
  ASSERT_OK(XF_OPEN_FILE(path("r.xmdf"), file));
  ASSERT_OK(XF_OPEN_GROUP(file, "run/Temporal/Depth", group));
  std::int32_t count = 0;
  EXPECT_OK(XF_GET_DATASET_NUMVALS(group, count));
  EXPECT_EQ(count, written_nodes);
  EXPECT_OK(XF_GET_DATASET_NUMACTIVE(group, count));
  EXPECT_EQ(count, written_cells);
  std::vector<double> times;
  EXPECT_OK(XF_GET_DATASET_TIMES(group, times));
  ASSERT_EQ(times.size(), outputs.size());
  std::vector<float> x(written_nodes), y(written_nodes), hdf5_values;
  std::vector<std::int8_t> flags(written_cells);
  for (std::int32_t i = 7; i >= 1; i -= 2) {  // backwards: kept chunks must not be mistaken
    const OutputTime& output = outputs[i - 1];
    EXPECT_EQ(times[i - 1], output.time);
    EXPECT_OK(vector ? XF_READ_VECTOR_VALUES_TIMESTEP(group, i, x, y)
                     : XF_READ_SCALAR_VALUES_TIMESTEP(group, i, x));
    EXPECT_EQ(x, output.x);
    if (vector) {
      EXPECT_EQ(y, output.y);
    }
    EXPECT_OK(XF_READ_ACTIVITY_TIMESTEP(group, i, flags));
    EXPECT_EQ(flags, output.flags);
  }
}

INSTANTIATE_TEST_SUITE_P(Storage, XfRoundTripTest,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(0, 1),
                                            ::testing::Values(1, 3), ::testing::Values(0, 7, 20)));

class XfWriterTest : public XfTest {
 protected:
  void create(const XfDatasetOptions& options = {}) {
    ASSERT_OK(XF_CREATE_FILE(path("w.xmdf"), file));
    ASSERT_OK(XF_CREATE_GENERIC_GROUP(file, "run/Maximums", folder));
    ASSERT_OK(XF_CREATE_SCALAR_DATASET(folder, "Depth", options, scalar));
    ASSERT_OK(XF_CREATE_VECTOR_DATASET(folder, "Velocity", options, vector));
  }
  void close() {
    EXPECT_OK(XF_CLOSE_GROUP(scalar));
    EXPECT_OK(XF_CLOSE_GROUP(vector));
    EXPECT_OK(XF_CLOSE_GROUP(folder));
    EXPECT_OK(XF_CLOSE_FILE(file));
  }

  XfFile file;
  XfFolder folder;
  XfDataset scalar, vector;
};

TEST_F(XfWriterTest, RangesAreOfTheValuesOrTheMagnitudesAndPassOverWhatIsNoNumber) {
  constexpr float no_number = std::numeric_limits<float>::quiet_NaN();
  create();
  std::vector<float> many(1000, 2.0F);
  many[3] = no_number;
  many[300] = -7.5F;
  many[999] = 9.25F;
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(scalar, 0.0, many));
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(scalar, 0.5, std::vector<float>(1000, no_number)));
  const std::vector<float> x{3.0F, -6.0F, no_number}, y{-4.0F, 8.0F, 1.0F};
  EXPECT_OK(XF_WRITE_VECTOR_TIMESTEP(vector, 0.0, x, y));
  close();
  const std::vector<double> smallest = numbers_of(path("w.xmdf"), "run/Maximums/Depth/Mins");
  const std::vector<double> largest = numbers_of(path("w.xmdf"), "run/Maximums/Depth/Maxs");
  ASSERT_EQ(smallest.size(), 2U);
  EXPECT_EQ(smallest[0], -7.5);
  EXPECT_EQ(largest[0], 9.25);
  EXPECT_TRUE(std::isnan(smallest[1]) && std::isnan(largest[1]));
  EXPECT_EQ(numbers_of(path("w.xmdf"), "run/Maximums/Velocity/Mins"), std::vector<double>{5.0});
  EXPECT_EQ(numbers_of(path("w.xmdf"), "run/Maximums/Velocity/Maxs"), std::vector<double>{10.0});
}

TEST_F(XfWriterTest, TheLayoutIsTheOneThatViewersKnow) {
  XfDatasetOptions options;
  options.expected_times = 4;
  write_outputs(path("l.xmdf"), true, options, random_output_times(2));
  const std::vector<char> bytes = bytes_of(path("l.xmdf"));
  EXPECT_EQ(bytes.at(8), 0);  // version of the superblock

  const XfFileHandle h5(H5Fopen(path("l.xmdf").c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
  EXPECT_EQ(xf_dataset_text(h5.get(), "File Type"), "Xmdf");
  const XfGroupHandle run(H5Gopen2(h5.get(), "run", H5P_DEFAULT));
  const XfGroupHandle folder_group(H5Gopen2(h5.get(), "run/Temporal", H5P_DEFAULT));
  const XfGroupHandle group(H5Gopen2(h5.get(), "run/Temporal/Depth", H5P_DEFAULT));
  const hid_t at = group.get();
  EXPECT_EQ(xf_attribute_text(run.get(), "Grouptype"), "GENERIC");
  EXPECT_EQ(xf_attribute_text(folder_group.get(), "Grouptype"), "GENERIC");
  EXPECT_EQ(xf_attribute_text(group.get(), "Grouptype"), "DATASET VECTOR");
  EXPECT_EQ(xf_attribute_text(group.get(), "DatasetUnits"), "m");
  EXPECT_EQ(xf_attribute_text(group.get(), "TimeUnits"), "Hours");
  EXPECT_TRUE(H5Aexists(at, "Data Type") > 0 && H5Aexists(at, "DatasetCompression") > 0);

  constexpr hsize_t unlimited = H5S_UNLIMITED;
  EXPECT_EQ(extents_of(at, "Values"),
            (Extents{{2, written_nodes, 2}, {unlimited, written_nodes, 2}, {1, written_nodes, 2}}));
  EXPECT_EQ(extents_of(at, "Active"),
            (Extents{{2, written_cells}, {unlimited, written_cells}, {1, written_cells}}));
  for (const char* series : {"Times", "Mins", "Maxs"}) {
    EXPECT_EQ(extents_of(at, series), (Extents{{2}, {unlimited}, {10}}));
  }

  H5O_info_t info{};
  H5Oget_info2(at, &info, H5O_INFO_TIME);
  EXPECT_EQ(info.ctime, 0);
  write_outputs(path("again.xmdf"), true, options, random_output_times(2));
  EXPECT_EQ(bytes, bytes_of(path("again.xmdf")));
}

TEST_F(XfWriterTest, WithoutOutputTimesTheDatasetIsStillReadable) {
  create();
  close();
  XfGroup group;
  float version = 0;
  ASSERT_OK(XF_OPEN_FILE(path("w.xmdf"), file));
  EXPECT_OK(XF_GET_LIBRARY_VERSION_FILE(file, version));
  EXPECT_EQ(version, 2.1F);
  for (const char* name : {"run/Maximums/Depth", "run/Maximums/Velocity"}) {
    std::int32_t count = -1;
    ASSERT_OK(XF_OPEN_GROUP(file, name, group));
    EXPECT_OK(XF_GET_DATASET_NUM_TIMES(group, count));
    EXPECT_EQ(count, 0);
    EXPECT_OK(XF_GET_DATASET_NUMVALS(group, count));
    EXPECT_EQ(count, 0);
    EXPECT_OK(XF_CLOSE_GROUP(group));
  }
}

TEST_F(XfWriterTest, RefusesWhatDoesNotFitTogether) {
  create();
  const std::vector<float> three(3), four(4);
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(scalar, 0, three));
  expect_failure(XF_WRITE_SCALAR_TIMESTEP(scalar, 1, four), "expected 3 values, found 4");
  expect_failure(XF_WRITE_VECTOR_TIMESTEP(vector, 0, three, four), "expected 3 y components");
  expect_failure(XF_WRITE_VECTOR_TIMESTEP(scalar, 0, three, three), "components");
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(scalar, 1, three));
  expect_failure(XF_WRITE_ACTIVITY_TIMESTEP(scalar, std::vector<std::int8_t>(5)), "activity");
  XfDataset other;
  expect_failure(XF_CREATE_SCALAR_DATASET(folder, "Depth", {}, other), "already used");
  expect_failure(XF_CREATE_SCALAR_DATASET(folder, "a/b", {}, other), "name");
  XfFolder inside;
  EXPECT_FALSE(XF_CREATE_GENERIC_GROUP(file, "File Type/x", inside).ok());
}

// HDF5's clean-up at the end of the program is part of it.
TEST_F(XfWriterTest, AFullDiskEndsWithAReason) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto fill_disk = [&](rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    create();
    XfStatus status = XF_WRITE_SCALAR_TIMESTEP(scalar, 0.0, std::vector<float>(1000));
    for (const XfStatus& next : {XF_CLOSE_GROUP(scalar), XF_CLOSE_GROUP(vector),
                                 XF_CLOSE_GROUP(folder), XF_CLOSE_FILE(file)}) {
      if (status.ok()) status = next;
    }
    std::filesystem::remove_all(folder_name);
    std::fputs(status.reason.c_str(), stderr);
    std::exit(0);
  };
  for (const rlim_t bytes : {3000, 8000}) {  // at the values, at the close
    EXPECT_EXIT(fill_disk(bytes), ::testing::ExitedWithCode(0), "File too large");
  }
}

}  // namespace
}  // namespace quillet
