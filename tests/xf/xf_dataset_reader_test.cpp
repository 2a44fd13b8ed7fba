#include "xf/xf_dataset_reader.h"

#include <filesystem>

#include "xf_test_files.h"

namespace quillet {
namespace {

constexpr hsize_t time_count = 5;
constexpr hsize_t node_count = 50;

void deflate(hid_t properties) {
  H5Pset_deflate(properties, 4);
}
void shuffle_and_deflate(hid_t properties) {
  H5Pset_shuffle(properties);
  H5Pset_deflate(properties, 4);
}
void deflate_whole_chunks(hid_t properties) {
  deflate(properties);
  H5Pset_chunk_opts(properties, H5D_CHUNK_DONT_FILTER_PARTIAL_CHUNKS);
}
void deflate_and_checksum(hid_t properties) {
  H5Pset_deflate(properties, 4);
  H5Pset_fletcher32(properties);
}

void shuffle_deflate_and_checksum(hid_t properties) {
  H5Pset_shuffle(properties);
  deflate_and_checksum(properties);
}

// How Values and Active are stored; chunk extents of 0 nodes mean contiguous.
struct Storage {
  const char* what;
  hsize_t chunk_times;
  hsize_t chunk_nodes;
  void (*filters)(hid_t properties);
  hid_t type;
};

// Whole numbers below 128, so that every type of the cases holds them.
float value_at(hsize_t time, hsize_t node, hsize_t component) {
  return static_cast<float>((time * 31 + node * 7 + component * 53) % 127);
}

std::vector<float> all_values(hsize_t components) {
  std::vector<float> values;
  for (hsize_t i = 0; i < time_count * node_count * components; ++i) {
    const hsize_t node = i / components;
    values.push_back(value_at(node / node_count, node % node_count, i % components));
  }
  return values;
}

class XfReaderTest : public XfTest {
 protected:
  // A file with the group "d", filled by the test, and the group opened.
  void open_group(const std::function<void(hid_t group)>& fill) {
    ASSERT_OK(XF_CLOSE_GROUP(group));
    ASSERT_OK(XF_CLOSE_FILE(file));
    make_file(path("d.xmdf"), [&](hid_t root) { fill(make_group(root, "d").get()); });
    ASSERT_OK(XF_OPEN_FILE(path("d.xmdf"), file));
    ASSERT_OK(XF_OPEN_GROUP(file, "d", group));
  }
  XfStatus read_scalar(std::int32_t time, std::size_t count) {
    values.assign(count, -1.0F);
    return XF_READ_SCALAR_VALUES_TIMESTEP(group, time, values);
  }

  XfFile file;
  XfGroup group;
  std::vector<float> values;
};

// Functions, as the types of HDF5 are not constants.
std::vector<Storage> storages() {
  const hid_t real = H5T_IEEE_F32LE;
  return {{"contiguous", 0, 0, nullptr, real},
          {"contiguous 64-bit big-endian", 0, 0, nullptr, H5T_IEEE_F64BE},
          {"one output per chunk", 1, node_count, nullptr, real},
          {"three outputs per chunk", 3, node_count, nullptr, real},
          {"small pieces", 4, 7, nullptr, real},
          {"deflate", 1, node_count, deflate, real},
          {"deflate, chunk beyond the extents", 8, 64, deflate, real},
          {"deflate, three outputs", 3, node_count, deflate, real},
          {"deflate, split nodes", 1, 16, deflate, real},
          {"deflate, split both", 2, 16, deflate, real},
          {"shuffle", 1, node_count, shuffle_and_deflate, real},
          {"shuffle, split both", 2, 16, shuffle_and_deflate, real},
          {"deflate, not where chunks reach beyond the extents", 2, 16, deflate_whole_chunks, real},
          {"checksum", 2, 16, deflate_and_checksum, real},
          {"shuffle and checksum", 1, node_count, shuffle_deflate_and_checksum, real},
          {"deflate 64-bit", 2, 16, deflate, H5T_IEEE_F64LE},
          {"deflate big-endian", 1, node_count, deflate, H5T_IEEE_F32BE},
          {"shuffled 16-bit integers", 3, 16, shuffle_and_deflate, H5T_STD_I16LE},
          {"deflate 8-bit integers", 3, 16, deflate, H5T_STD_I8LE}};
}

TEST_F(XfReaderTest, ScalarsVectorsAndFlagsAreReadAsTheyWereWritten) {
  for (const Storage& storage : storages()) {
    SCOPED_TRACE(storage.what);
    for (const hsize_t components : {1, 2}) {
      Shape shape{{time_count, node_count}, {}, storage.filters};
      if (storage.chunk_times > 0) shape.chunk = {storage.chunk_times, storage.chunk_nodes};
      Shape flag_shape = shape;
      if (components == 2) {
        shape.extents.push_back(2);
        if (storage.chunk_times > 0) shape.chunk.push_back(2);
      }
      const bool real = storage.type == H5T_IEEE_F32LE;
      open_group([&](hid_t d) {
        make_times(d, std::vector<double>(time_count, 1.0));
        make_member(d, "Values", storage.type, shape, H5T_NATIVE_FLOAT, all_values(components));
        make_member(d, "Active", real ? H5T_STD_U8LE : H5T_STD_I32BE, flag_shape, H5T_NATIVE_FLOAT,
                    all_values(1));
      });
      std::vector<float> x(node_count), y(node_count);
      std::vector<std::int8_t> flags(node_count);
      for (hsize_t time = 0; time < time_count; ++time) {
        const auto index = static_cast<std::int32_t>(time + 1);
        ASSERT_OK(components == 1 ? XF_READ_SCALAR_VALUES_TIMESTEP(group, index, x)
                                  : XF_READ_VECTOR_VALUES_TIMESTEP(group, index, x, y));
        ASSERT_OK(XF_READ_ACTIVITY_TIMESTEP(group, index, flags));
        for (hsize_t node = 0; node < node_count; ++node) {
          ASSERT_EQ(x[node], value_at(time, node, 0));
          if (components == 2) {
            ASSERT_EQ(y[node], value_at(time, node, 1));
          }
          ASSERT_EQ(flags[node], value_at(time, node, 0) != 0 ? 1 : 0);
        }
      }
    }
  }
}

// A chunk that its writer stored without the filter, among deflated ones.
TEST_F(XfReaderTest, ChunksThatSkipTheFilter) {
  std::vector<float> plain(node_count, 4.5F);
  open_group([&](hid_t d) {
    make_times(d, {0, 1});
    const XfDatasetHandle dataset =
        make_member(d, "Values", H5T_IEEE_F32LE, {{2, node_count}, {1, node_count}, deflate},
                    H5T_NATIVE_FLOAT, std::vector<float>(2 * node_count, 1.0F));
    const hsize_t second[2] = {1, 0};
    H5Dwrite_chunk(dataset.get(), H5P_DEFAULT, 1, second, plain.size() * 4, plain.data());
  });
  EXPECT_OK(read_scalar(1, node_count));
  EXPECT_EQ(values, std::vector<float>(node_count, 1.0F));
  EXPECT_OK(read_scalar(2, node_count));
  EXPECT_EQ(values, plain);
}

TEST_F(XfReaderTest, TimesUnitsAndFlagsOfOtherWriters) {
  open_group([](hid_t d) {
    // Numbers whose lowest byte is 0, and signs.
    make_member<int>(d, "Active", H5T_STD_I32LE, {{2, 2}, {1, 2}, deflate}, H5T_NATIVE_INT,
                     {0, 256, -65536, -1});
    make_member<float>(d, "Times", H5T_IEEE_F32BE, {{2}, {}, {}}, H5T_NATIVE_FLOAT, {0.1F, 2.0F});
    const XfTypeHandle variable(H5Tcopy(H5T_C_S1));
    H5Tset_size(variable.get(), H5T_VARIABLE);
    const XfSpaceHandle space(H5Screate(H5S_SCALAR));
    const XfAttributeHandle units(
        H5Acreate2(d, "TimeUnits", variable.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT));
    const char* text = "Seconds  ";
    H5Awrite(units.get(), variable.get(), &text);
  });
  std::vector<double> times;
  EXPECT_OK(XF_GET_DATASET_TIMES(group, times));
  EXPECT_EQ(times, (std::vector<double>{static_cast<double>(0.1F), 2.0}));
  std::string units;
  EXPECT_OK(XF_GET_DATASET_TIME_UNITS(group, units));
  EXPECT_EQ(units, "Seconds");
  std::vector<std::int8_t> flags(2);
  EXPECT_OK(XF_READ_ACTIVITY_TIMESTEP(group, 1, flags));
  EXPECT_EQ(flags, (std::vector<std::int8_t>{0, 1}));
  EXPECT_OK(XF_READ_ACTIVITY_TIMESTEP(group, 2, flags));
  EXPECT_EQ(flags, (std::vector<std::int8_t>{1, 1}));
}

struct Refusal {
  const char* what;
  std::function<void(hid_t group)> make_values;
  const char* reason;
};

std::vector<Refusal> refusals() {
  const auto values = [](hid_t type, Shape shape, hsize_t count) {
    return [type, shape, count](hid_t d) {
      make_member(d, "Values", type, shape, H5T_NATIVE_FLOAT, std::vector<float>(count));
    };
  };
  // One chunk of (2, nodes) with the given bytes in it.
  const auto chunk = [](hsize_t nodes, const std::string& bytes) {
    return [nodes, bytes](hid_t d) {
      const XfDatasetHandle dataset = make_member<float>(
          d, "Values", H5T_IEEE_F32LE, {{2, nodes}, {2, nodes}, deflate}, H5T_NATIVE_FLOAT, {});
      const hsize_t first[2] = {0, 0};
      H5Dwrite_chunk(dataset.get(), H5P_DEFAULT, 0, first, bytes.size(), bytes.data());
    };
  };
  const hid_t real = H5T_IEEE_F32LE;
  const hsize_t huge = 2000000000;
  // The zlib stream of four zero bytes, where 32 are due.
  const std::string four_bytes("\x78\x01\x63\x60\x60\x60\x00\x00\x00\x04\x00\x01", 12);
  const auto link = [](void (*make)(hid_t group)) { return [make](hid_t d) { make(d); }; };
  return {
      {"soft link", link([](hid_t d) { H5Lcreate_soft("Times", d, "Values", 0, 0); }),
       "Values is missing"},
      {"external link",
       link([](hid_t d) { H5Lcreate_external("/dev/zero", "/d", d, "Values", 0, 0); }),
       "Values keeps its data in other files"},
      {"virtual",
       [](hid_t d) {
         const auto views = [](hid_t properties) {
           const hsize_t extents[2] = {2, 4};
           const XfSpaceHandle space(H5Screate_simple(2, extents, nullptr));
           H5Pset_virtual(properties, space.get(), "/dev/zero", "/d", space.get());
         };
         make_member<float>(d, "Values", H5T_IEEE_F32LE, {{2, 4}, {}, views}, H5T_NATIVE_FLOAT, {});
       },
       "Values keeps its data in other files"},
      {"three components", values(real, {{2, 4, 3}, {}, {}}, 24), "expected 2 components, found 3"},
      {"chunks not written", values(real, {{2, huge}, {1, 1000}, deflate}, 0),
       "incomplete, 0 of its chunks"},
      {"columns without rows", values(real, {{0, huge}, {1, 1000}, {}}, 0),
       "claims more than is stored, expected output times of 2000000000 columns, found none"},
      {"bomb", chunk(250000000, "\x78\x01\x03"), "expected 2000000000 bytes, found 3 compressed"},
      {"short chunk", chunk(4, four_bytes), "damaged compressed bytes"},
      {"other files",
       [](hid_t d) {
         const auto external = [](hid_t properties) {
           H5Pset_external(properties, "/dev/zero", 0, 32);
         };
         make_member<float>(d, "Values", H5T_IEEE_F32LE, {{2, 4}, {}, external}, H5T_NATIVE_FLOAT,
                            {});
       },
       "other files"}};
}

// Nearly constant values are shrunk without a limit by two deflates.
TEST_F(XfReaderTest, ReadsWhatSeveralFiltersHaveShrunk) {
  constexpr hsize_t many = 4000000;
  open_group([](hid_t d) {
    make_times(d, {0});
    const auto twice = [](hid_t properties) {
      H5Pset_deflate(properties, 9);
      H5Pset_deflate(properties, 9);
    };
    make_member(d, "Values", H5T_IEEE_F32LE, {{1, many}, {1, many}, twice}, H5T_NATIVE_FLOAT,
                std::vector<float>(many, 3.0F));
  });
  EXPECT_OK(read_scalar(1, many));
  EXPECT_EQ(values.back(), 3.0F);
}

TEST_F(XfReaderTest, TellsTheNumbersOfADatasetWithoutOutputTimes) {
  constexpr std::int32_t many = 12000000;
  {
    XfFile created;
    XfFolder new_folder;
    XfDatasetWriter dataset;
    XfDatasetOptions options;
    options.expected_values = many;
    ASSERT_OK(XF_CREATE_FILE(path("e.xmdf"), created));
    ASSERT_OK(XF_CREATE_GENERIC_GROUP(created, "r", new_folder));
    ASSERT_OK(XF_CREATE_SCALAR_DATASET(new_folder, "d", options, dataset));
    ASSERT_OK(XF_CLOSE_GROUP(dataset));
    ASSERT_OK(XF_CLOSE_GROUP(new_folder));
    ASSERT_OK(XF_CLOSE_FILE(created));
  }
  ASSERT_OK(XF_OPEN_FILE(path("e.xmdf"), file));
  ASSERT_OK(XF_OPEN_GROUP(file, "r/d", group));
  std::int32_t count = 0;
  EXPECT_OK(XF_GET_DATASET_NUMVALS(group, count));
  EXPECT_EQ(count, many);
  EXPECT_OK(XF_GET_DATASET_NUM_TIMES(group, count));
  EXPECT_EQ(count, 0);
}

// Engines append while users look.
TEST_F(XfReaderTest, NoticesAFileThatIsCutWhileItIsRead) {
  open_group([](hid_t d) {
    make_times(d, {0, 1});
    make_member(d, "Values", H5T_IEEE_F32LE, {{2, 4}, {1, 4}, {}}, H5T_NATIVE_FLOAT,
                std::vector<float>(8, 5.0F));
    make_member(d, "Active", H5T_STD_U8LE, {{2, 1}, {1, 1}, {}}, H5T_NATIVE_INT,
                std::vector<int>(2, 1));
  });
  const std::size_t size = folder.read("d.xmdf").size();
  EXPECT_OK(read_scalar(1, 4));
  std::filesystem::resize_file(path("d.xmdf"), size + 1000);
  EXPECT_OK(read_scalar(2, 4));
  std::vector<std::int8_t> flags(1);
  EXPECT_OK(XF_READ_ACTIVITY_TIMESTEP(group, 1, flags));
  std::filesystem::resize_file(path("d.xmdf"), size - 1);
  const std::string smaller = "the file became smaller while it was read, expected " +
                              std::to_string(size) + " bytes, found " + std::to_string(size - 1);
  expect_failure(read_scalar(1, 4), smaller);
  expect_failure(XF_READ_ACTIVITY_TIMESTEP(group, 1, flags), smaller);
}

TEST_F(XfReaderTest, PassesOverActivityBehindASoftLink) {
  open_group([](hid_t d) {
    make_times(d, {0});
    make_member(d, "Other", H5T_STD_U8LE, {{1, 3}, {1, 3}, {}}, H5T_NATIVE_INT,
                std::vector<int>(3, 1));
    H5Lcreate_soft("Other", d, "Active", H5P_DEFAULT, H5P_DEFAULT);
  });
  std::int32_t count = -1;
  EXPECT_OK(XF_GET_DATASET_NUMACTIVE(group, count));
  EXPECT_EQ(count, 0);
}

TEST_F(XfReaderTest, RefusesWhatItCannotRead) {
  for (const Refusal& refusal : refusals()) {
    SCOPED_TRACE(refusal.what);
    open_group([&](hid_t d) {
      make_times(d, {0, 1});
      refusal.make_values(d);
    });
    expect_failure(read_scalar(1, 4), refusal.reason);
  }
}

}  // namespace
}  // namespace quillet
