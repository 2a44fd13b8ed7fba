// Damaged files: nothing crashes, and damaged compressed values are never taken for good ones.
#include <array>
#include <cstdint>
#include <random>

#include "xf/xf_trial.h"
#include "xmdf_builder.h"

#ifdef __SANITIZE_ADDRESS__
// What is tested here is this code, not HDF5, which asks for as much memory as a damaged file
// claims and copes with getting none.
extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1";
}
// Nor does it free everything when a damaged header stops it.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:H5FL__malloc\nleak:H5O_";
}
#endif

namespace quillet {
namespace {

constexpr int time_count = 6;

std::vector<testing::DatTime> random_output_times(const testing::DatShape& shape) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> real(-5.0F, 5.0F);
  std::vector<testing::DatTime> times(time_count);
  for (testing::DatTime& time : times) {
    time.time = real(random);
    time.values.resize(shape.nodes * (shape.is_vector ? 2 : 1));
    for (float& value : time.values) value = real(random);
    for (int i = 0; i < shape.cells; ++i) time.statuses.push_back(random() % 2 != 0);
  }
  return times;
}

// The number of output times that can be read; -1 when the file cannot be opened.
int count_readable(const std::string& name, bool vector) {
  XfFile file;
  std::vector<std::string> paths;
  XfGroup group;
  if (!XF_OPEN_FILE(name, file).ok()) return -1;
  const XfStatus listed =
      vector ? XF_GET_VECTOR_DATASET_PATHS(file, paths) : XF_GET_SCALAR_DATASET_PATHS(file, paths);
  if (!listed.ok() || paths.empty() || !XF_OPEN_GROUP(file, paths[0], group).ok()) return 0;
  std::int32_t nodes = 0, cells = 0, times = 0;
  std::string units;
  for (const XfStatus& status :
       {XF_GET_DATASET_TIME_UNITS(group, units), XF_GET_DATASET_NUMVALS(group, nodes),
        XF_GET_DATASET_NUMACTIVE(group, cells), XF_GET_DATASET_NUM_TIMES(group, times)}) {
    if (!status.ok()) return 0;
  }
  std::vector<float> x(nodes), y(nodes);
  std::vector<std::int8_t> flags(cells);
  int readable = 0;
  for (std::int32_t time = 1; time <= times; ++time) {
    const XfStatus read = vector ? XF_READ_VECTOR_VALUES_TIMESTEP(group, time, x, y)
                                 : XF_READ_SCALAR_VALUES_TIMESTEP(group, time, x);
    if (read.ok() && XF_READ_ACTIVITY_TIMESTEP(group, time, flags).ok()) ++readable;
  }
  return readable;
}

// Scalar or vector, output times per chunk.
class XfDamageTest : public XfTest,
                     public ::testing::WithParamInterface<std::tuple<bool, hsize_t>> {
 protected:
  XfDamageTest() {
    const testing::DatShape shape{100, 37, vector};
    testing::XmdfForm form{.chunk_times = times_per_chunk};
    form.filters = [](hid_t properties) { H5Pset_deflate(properties, 1); };
    MAKE_XMDF(folder, "whole.xmdf", {{"run/Temporal/Depth", shape, random_output_times(shape)}},
              form);
    bytes = folder.read("whole.xmdf");
  }
  int count_readable_in(const std::string& damaged) {
    folder.write("damaged.xmdf", damaged);
    return count_readable(path("damaged.xmdf"), vector);
  }

  const bool vector = std::get<0>(GetParam());
  const hsize_t times_per_chunk = std::get<1>(GetParam());
  std::string bytes;
};

TEST_P(XfDamageTest, AFileCutAnywhereIsNotOpened) {
  EXPECT_EQ(count_readable_in(bytes), time_count);
  for (std::size_t length = 0; length < bytes.size(); length += length < 300 ? 1 : 173) {
    ASSERT_EQ(count_readable_in(bytes.substr(0, length)), -1) << length;
  }
}

TEST_P(XfDamageTest, BytesDamagedAtRandomCrashNothing) {
  std::mt19937 random(20);
  const std::size_t attributes = bytes.rfind("Grouptype") - 100;
  int unharmed = 0;
  constexpr int attempts = 200;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    std::string damaged = bytes;
    // HDF5 itself crashes on damaged attributes.
    const bool aims = attempt % 2 == 0;
    for (unsigned i = 0; i <= random() % 3; ++i) {
      const std::size_t position = aims ? attributes + random() % 400 : random() % bytes.size();
      damaged[position] = static_cast<char>(random());
    }
    folder.write("damaged.xmdf", damaged);
    if (!XF_TRY_FILE(path("damaged.xmdf")).ok()) continue;
    if (count_readable(path("damaged.xmdf"), vector) == time_count) ++unharmed;
  }
  EXPECT_GT(unharmed, 0);
  EXPECT_LT(unharmed, attempts);
}

// The lowest bit of every byte of a deflated chunk matters (the highest ones of the last byte
// before the checksum do not): the checksum notices.
TEST_P(XfDamageTest, DamagedCompressedBytesAreNoticed) {
  hsize_t size = 0;
  haddr_t address = 0;
  {
    const XfFileHandle file(H5Fopen(path("whole.xmdf").c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
    const XfDatasetHandle values(H5Dopen2(file.get(), "run/Temporal/Depth/Values", H5P_DEFAULT));
    const hsize_t first[3] = {0, 0, 0};
    unsigned mask = 0;
    ASSERT_GE(H5Dget_chunk_info_by_coord(values.get(), first, &mask, &address, &size), 0);
  }
  ASSERT_GT(size, 20U);
  for (hsize_t i = 0; i < size; i += 5) {
    std::string damaged = bytes;
    damaged[address + i] = static_cast<char>(damaged[address + i] ^ 1);
    EXPECT_EQ(count_readable_in(damaged), time_count - static_cast<int>(times_per_chunk)) << i;
  }
}

// A product of extents that overflows to nothing; a mantissa beyond the number, where HDF5 would
// overwrite memory.
TEST_P(XfDamageTest, HeadersThatNoFileHasAreRefused) {
  const auto text_of = [](std::array<std::uint32_t, 2> numbers) {
    return std::string(reinterpret_cast<const char*>(numbers.data()), sizeof numbers);
  };
  // Exponent from bit 23 of 8 bits, mantissa from bit 0 of 23 or 255, bias 127.
  const std::array<std::array<std::string, 3>, 2> changes{{
      {text_of({static_cast<std::uint32_t>(times_per_chunk), 100}), text_of({1U << 31U, 1U << 31U}),
       "Values has damaged chunk extents"},
      {text_of({0x17000817, 127}), text_of({0xff000817, 127}), "Values holds no numbers"},
  }};
  for (const auto& [whole, changed, reason] : changes) {
    std::string damaged = bytes;
    for (auto at = bytes.find(whole); at != std::string::npos; at = bytes.find(whole, at + 1)) {
      damaged.replace(at, 8, changed);
    }
    folder.write("damaged.xmdf", damaged);
    XfFile file;
    XfGroup group;
    std::int32_t nodes = 0;
    ASSERT_TRUE(XF_OPEN_FILE(path("damaged.xmdf"), file).ok());
    ASSERT_TRUE(XF_OPEN_GROUP(file, "run/Temporal/Depth", group).ok());
    EXPECT_EQ(XF_GET_DATASET_NUMVALS(group, nodes).reason, reason);
  }
}

std::string name_of_chunks(const ::testing::TestParamInfo<std::tuple<bool, hsize_t>>& param_info) {
  const auto& [is_vector, times] = param_info.param;
  return std::string(is_vector ? "Vectors" : "Scalars") + "InChunksOf" + std::to_string(times);
}

INSTANTIATE_TEST_SUITE_P(Chunks, XfDamageTest,
                         ::testing::Combine(::testing::Bool(),
                                            ::testing::Values(hsize_t{1}, hsize_t{3})),
                         name_of_chunks);

}  // namespace
}  // namespace quillet
