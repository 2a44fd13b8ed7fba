// Damaged files: nothing crashes, and damaged compressed values are never taken for good ones.
#include <random>

#include "xf_test_files.h"

#ifdef __SANITIZE_ADDRESS__
// What is tested here is this code, not HDF5, which asks for as much memory as a damaged file
// claims (and copes with getting none) and copies a little beyond its buffers when attributes are
// damaged.
extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1:replace_intrin=0";
}
// Nor does it free everything when a damaged header stops it.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:H5FL__malloc\nleak:H5O_";
}
#endif

namespace quillet {
namespace {

constexpr int time_count = 6;

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
class XfDamageTest : public XfTest, public ::testing::WithParamInterface<std::tuple<bool, int>> {
 protected:
  XfDamageTest() {
    XfDatasetOptions options;
    options.compression = 1;
    options.times_per_chunk = times_per_chunk;
    write_outputs(path("whole.xmdf"), vector, options, random_output_times(time_count));
    bytes = bytes_of(path("whole.xmdf"));
  }
  int count_readable_in(const std::vector<char>& damaged) {
    put_bytes(path("damaged.xmdf"), damaged);
    return count_readable(path("damaged.xmdf"), vector);
  }

  const bool vector = std::get<0>(GetParam());
  const int times_per_chunk = std::get<1>(GetParam());
  std::vector<char> bytes;
};

TEST_P(XfDamageTest, AFileCutAnywhereIsNotOpened) {
  EXPECT_EQ(count_readable_in(bytes), time_count);
  for (std::size_t length = 0; length < bytes.size(); length += length < 300 ? 1 : 173) {
    const std::vector<char> cut(bytes.begin(), bytes.begin() + static_cast<long>(length));
    ASSERT_EQ(count_readable_in(cut), -1) << length;
  }
}

TEST_P(XfDamageTest, BytesDamagedAtRandomCrashNothing) {
  std::mt19937 random(20);
  int unharmed = 0;
  constexpr int attempts = 1000;
  for (int attempt = 0; attempt < attempts; ++attempt) {
    std::vector<char> damaged = bytes;
    for (unsigned i = 0; i <= random() % 3; ++i) {
      damaged[random() % damaged.size()] = static_cast<char>(random());
    }
    if (count_readable_in(damaged) == time_count) ++unharmed;
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
    std::vector<char> damaged = bytes;
    damaged[address + i] = static_cast<char>(damaged[address + i] ^ 1);
    EXPECT_EQ(count_readable_in(damaged), time_count - times_per_chunk) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Chunks, XfDamageTest,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(1, 3)));

}  // namespace
}  // namespace quillet
