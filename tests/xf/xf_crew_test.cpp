// Chunks that the crew inflates ahead: with any number of threads what is read is the same, and so
// is what is said of damage, at the output time that it concerns.
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <tuple>

#include "in_crew_of.h"
#include "xf_test_files.h"

namespace quillet {
namespace {

// Enough for the crew to take part.
constexpr hsize_t time_count = 70;
constexpr hsize_t node_count = 40001;

struct Chunks {
  hsize_t times;
  hsize_t nodes;
};

class XfCrewTest : public XfTest,
                   public ::testing::WithParamInterface<std::tuple<int, Chunks, bool>> {
 protected:
  void SetUp() override {
    const auto [threads, chunks, shuffled] = GetParam();
    std::mt19937 random(20261122);
    for (hsize_t i = 0; i < time_count * node_count; ++i) {
      values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random() & 0x40FF00FF)));
    }
    make_file(path("d.xmdf"), [&, chunk = chunks, shuffle = shuffled](hid_t root) {
      const XfGroupHandle group = make_group(root, "d");
      make_times(group.get(), std::vector<double>(time_count, 1.0));
      const auto filters = [&](hid_t properties) {
        if (shuffle) H5Pset_shuffle(properties);
        H5Pset_deflate(properties, 1);
      };
      make_member(group.get(), "Values", H5T_IEEE_F32LE,
                  {{time_count, node_count}, {chunk.times, chunk.nodes}, filters}, H5T_NATIVE_FLOAT,
                  values);
    });
  }

  // The reasons of the output times that cannot be read; the others are compared.
  std::vector<std::string> read_all() {
    std::vector<std::string> reasons;
    XfFile file;
    XfGroup group;
    EXPECT_OK(XF_OPEN_FILE(path("d.xmdf"), file));
    EXPECT_OK(XF_OPEN_GROUP(file, "d", group));
    std::vector<float> read(node_count);
    for (std::int32_t time = 1; time <= static_cast<std::int32_t>(time_count); ++time) {
      const XfStatus status = XF_READ_SCALAR_VALUES_TIMESTEP(group, time, read);
      if (!status.ok()) {
        reasons.push_back(status.reason);
      } else {
        const auto expected = values.begin() + static_cast<std::ptrdiff_t>((time - 1) * node_count);
        EXPECT_TRUE(std::equal(read.begin(), read.end(), expected)) << time;
      }
    }
    return reasons;
  }

  void damage_output_time(hsize_t time) {
    hsize_t size = 0;
    haddr_t address = 0;
    {
      const XfFileHandle file(H5Fopen(path("d.xmdf").c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
      const XfDatasetHandle dataset(H5Dopen2(file.get(), "d/Values", H5P_DEFAULT));
      const hsize_t first[2] = {time - 1, 0};
      unsigned mask = 0;
      ASSERT_GE(H5Dget_chunk_info_by_coord(dataset.get(), first, &mask, &address, &size), 0);
    }
    std::string bytes = folder.read("d.xmdf");
    bytes[address + size / 2] = static_cast<char>(bytes[address + size / 2] ^ 1);
    folder.write("d.xmdf", bytes);
  }

  std::vector<float> values;
};

TEST_P(XfCrewTest, ReadsTheSameAndTellsDamageInItsTurn) {
  const auto [threads, chunks, shuffled] = GetParam();
  test::in_crew_of(threads, [&] { EXPECT_EQ(read_all(), std::vector<std::string>{}); });
  damage_output_time(31);
  std::vector<std::string> alone;
  std::vector<std::string> together;
  test::in_crew_of(1, [&] { alone = read_all(); });
  test::in_crew_of(threads, [&] { together = read_all(); });
  EXPECT_EQ(together, alone);
  EXPECT_EQ(alone.size(), chunks.times);
  EXPECT_EQ(alone.front(), "Values of output time 31 has damaged compressed bytes");
}

INSTANTIATE_TEST_SUITE_P(Forms, XfCrewTest,
                         ::testing::Combine(::testing::Values(2, 3, 8),
                                            ::testing::Values(Chunks{1, node_count},
                                                              Chunks{1, 9000}, Chunks{10, 15000}),
                                            ::testing::Bool()));

}  // namespace
}  // namespace quillet
