// The writer used wrongly: every call says why it fails, and nothing that follows crashes.
#include "xf/xf_writer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "xf_test_files.h"

namespace quillet {
namespace {

using Reals = std::vector<float>;
using Flags = std::vector<std::int8_t>;

constexpr XfRange some_range{1, 3};

class XfWriterTest : public XfTest {
 protected:
  XfWriterTest() {
    EXPECT_OK(XF_CREATE_FILE(path("w.xmdf"), file));
    EXPECT_OK(XF_CREATE_GENERIC_GROUP(file, "run//Temporal/", folder));
  }

  XfDatasetWriter scalar(const std::string& name, const XfDatasetOptions& options = {}) {
    XfDatasetWriter dataset;
    EXPECT_OK(XF_CREATE_SCALAR_DATASET(folder, name, options, dataset));
    return dataset;
  }
  void close_file() {
    EXPECT_OK(XF_CLOSE_GROUP(folder));
    EXPECT_OK(XF_CLOSE_FILE(file));
  }
  // What the closed file holds of a dataset: the number of output times, the last one's data.
  void expect_last_output(const std::string& dataset, std::int32_t number, const Reals& values,
                          const Flags& flags = {}) {
    XfFile opened;
    XfGroup group;
    ASSERT_OK(XF_OPEN_FILE(path("w.xmdf"), opened));
    ASSERT_OK(XF_OPEN_GROUP(opened, "run/Temporal/" + dataset, group));
    std::int32_t count = 0;
    EXPECT_OK(XF_GET_DATASET_NUM_TIMES(group, count));
    EXPECT_EQ(count, number);
    Reals found(values.size());
    EXPECT_OK(XF_READ_SCALAR_VALUES_TIMESTEP(group, number, found));
    EXPECT_EQ(found, values);
    Flags found_flags(flags.size());
    EXPECT_OK(XF_READ_ACTIVITY_TIMESTEP(group, number, found_flags));
    EXPECT_EQ(found_flags, flags);
  }

  XfFile file;
  XfFolder folder;
};

TEST_F(XfWriterTest, MoreOrFewerOutputTimesThanExpectedMayFollow) {
  int number = 0;
  for (const XfDatasetOptions& options :
       {XfDatasetOptions{.expected_times = 2}, XfDatasetOptions{.expected_times = 9},
        XfDatasetOptions{.compression = 1, .expected_times = 2, .times_per_chunk = 2},
        XfDatasetOptions{.compression = 9, .expected_times = 9, .times_per_chunk = 4}}) {
    XfDatasetWriter dataset = scalar("d" + std::to_string(number++), options);
    for (float hours = 0; hours < 3; ++hours) {
      EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(dataset, hours, Reals{hours, 7}, some_range));
      EXPECT_OK(XF_WRITE_ACTIVITY_TIMESTEP(dataset, Flags{0, -128, 2}));
    }
    EXPECT_OK(XF_CLOSE_GROUP(dataset));
    EXPECT_OK(XF_CLOSE_GROUP(dataset));
  }
  close_file();
  for (const std::string name : {"d0", "d1", "d2", "d3"}) {
    expect_last_output(name, 3, {2, 7}, {0, 1, 1});
  }
}

TEST_F(XfWriterTest, NamesAreUsedOnceAndMakeNoFurtherGroups) {
  XfDatasetWriter first = scalar("Depth");
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(first, 0, Reals{1, 2}, some_range));
  XfDatasetWriter other;
  for (const auto& [name, reason] :
       std::vector<std::pair<std::string, std::string>>{{"Depth", "already used"},
                                                        {"a/b", "unusable name"},
                                                        {"/a", "unusable name"},
                                                        {"", "unusable name"},
                                                        {".", ""}}) {
    expect_failure(XF_CREATE_SCALAR_DATASET(folder, name, {}, other), reason);
    expect_failure(XF_CREATE_VECTOR_DATASET(folder, name, {}, other), reason);
    EXPECT_FALSE(other);
  }
  EXPECT_OK(XF_CLOSE_GROUP(first));
  // Values is no folder that could hold others.
  XfFolder inside;
  expect_failure(XF_CREATE_GENERIC_GROUP(file, "run/Temporal/Depth/Values", inside), "group");
  expect_failure(XF_CREATE_GENERIC_GROUP(file, "run/Temporal/Depth/Values/x", inside), "group");
  EXPECT_FALSE(inside);
  close_file();
  expect_last_output("Depth", 1, {1, 2});
}

TEST_F(XfWriterTest, OptionsThatCannotBeAreRefused) {
  XfDatasetWriter dataset;
  for (const XfDatasetOptions& options :
       {XfDatasetOptions{.compression = 10}, XfDatasetOptions{.compression = -1},
        XfDatasetOptions{.expected_times = -1}, XfDatasetOptions{.times_per_chunk = 0}}) {
    expect_failure(XF_CREATE_SCALAR_DATASET(folder, "d", options, dataset), "expected ");
    EXPECT_FALSE(dataset);
  }
}

TEST_F(XfWriterTest, EveryOutputTimeHasTheSameNumbers) {
  const Reals two{1, 2}, three{1, 2, 3};
  XfDatasetWriter depth = scalar("Depth");
  XfDatasetWriter flow;
  ASSERT_OK(XF_CREATE_VECTOR_DATASET(folder, "Vector Velocity", {}, flow));
  expect_failure(XF_WRITE_ACTIVITY_TIMESTEP(depth, Flags{1}), "expected 0 output times");
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(depth, 0, three, some_range));
  expect_failure(XF_WRITE_SCALAR_TIMESTEP(depth, 1, two, some_range), "expected 3 values, found 2");
  expect_failure(XF_WRITE_SCALAR_TIMESTEP(depth, 1, {}, some_range), "expected 3 values, found 0");
  expect_failure(XF_WRITE_VECTOR_TIMESTEP(depth, 1, two, some_range), "expected 1 components");
  expect_failure(XF_WRITE_SCALAR_TIMESTEP(flow, 0, three, some_range),
                 "expected 2 components, found 1");
  expect_failure(XF_WRITE_VECTOR_TIMESTEP(flow, 0, three, some_range), "expected ");
  EXPECT_OK(XF_WRITE_VECTOR_TIMESTEP(flow, 0, Reals{1, 2, 3, 4}, some_range));
  expect_failure(XF_WRITE_VECTOR_TIMESTEP(flow, 1, two, some_range), "expected 2 values, found 1");
}

// Activity for all output times or for none.
TEST_F(XfWriterTest, ActivityMayNotBeMissingForOneOutputTime) {
  const auto after_first = [&](const std::string& name, const Flags& flags) {
    XfDatasetWriter dataset = scalar(name);
    EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(dataset, 0, Reals{1}, some_range));
    EXPECT_OK(XF_WRITE_ACTIVITY_TIMESTEP(dataset, flags));
    return dataset;
  };
  XfDatasetWriter twice = after_first("written twice", {1, 0});
  expect_failure(XF_WRITE_ACTIVITY_TIMESTEP(twice, Flags{1, 0}), "expected 1 output times");
  for (const bool has_first : {true, false}) {
    XfDatasetWriter half = after_first(has_first ? "later missing" : "first missing",
                                       has_first ? Flags{1, 0} : Flags{});
    EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(half, 1, Reals{1}, some_range));
    expect_failure(XF_WRITE_ACTIVITY_TIMESTEP(half, has_first ? Flags{} : Flags{1, 0}),
                   has_first ? "expected 2 activity flags, found 0" : "expected 2 output times");
  }
  XfDatasetWriter longer = after_first("more flags", {1, 0});
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(longer, 1, Reals{1}, some_range));
  expect_failure(XF_WRITE_ACTIVITY_TIMESTEP(longer, Flags{1, 0, 1}), "expected 2 activity flags");
  XfDatasetWriter unfinished = after_first("not written at the end", {1, 0});
  EXPECT_OK(XF_WRITE_SCALAR_TIMESTEP(unfinished, 1, Reals{1}, some_range));
  expect_failure(XF_CLOSE_GROUP(unfinished), "expected 2 output times with activity, found 1");
  EXPECT_FALSE(unfinished);
}

TEST_F(XfWriterTest, AFileWithOpenDatasetsDoesNotCloseWell) {
  const XfDatasetWriter dataset = scalar("Depth");
  expect_failure(XF_CLOSE_FILE(file), "");
  EXPECT_OK(XF_CLOSE_FILE(file));
}

// Whatever the pieces; what is no number is passed over.
TEST(XfRanges, AreTheSmallestAndTheLargestNumber) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  constexpr float inf = std::numeric_limits<float>::infinity();
  std::mt19937 random(5);
  for (const std::size_t piece : {1U, 255U, 256U, 1000U}) {
    Reals values(3001);
    for (float& value : values) value = random() % 3 == 0 ? nan : static_cast<float>(random());
    values[random() % 3001] = -1;
    values[random() % 3000] = 5e9F;
    XfRangeFinder finder;
    for (std::size_t first = 0; first < values.size(); first += piece) {
      finder.include(values.data() + first, std::min(piece, values.size() - first));
    }
    EXPECT_EQ(finder.range().smallest, -1);
    EXPECT_EQ(finder.range().largest, 5e9F);
  }
  const auto range_of = [](const Reals& values) {
    return XF_RANGE_OF(values.data(), values.size());
  };
  EXPECT_TRUE(std::isnan(range_of({nan, nan}).smallest) && std::isnan(range_of({}).largest));
  EXPECT_EQ(range_of({nan, inf}).smallest, inf);
  EXPECT_EQ(range_of({-inf, nan}).largest, -inf);
}

}  // namespace
}  // namespace quillet
