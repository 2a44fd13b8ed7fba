// XMDF files of other writers, damaged files, full disks: right numbers, or one line that says what
// is wrong and no output.
#include <gtest/gtest.h>

#include <filesystem>

#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

namespace fs = std::filesystem;

constexpr DatShape shape{40, 15, false};

// Output times 0, 0.5, 1 ...; values below 100.
std::vector<DatTime> outputs(int count, bool has_activity = true) {
  std::vector<DatTime> times;
  for (int t = 0; t < count; ++t) {
    DatTime time{static_cast<float>(t) * 0.5F, {}, {}};
    for (int node = 0; node < shape.nodes; ++node) {
      time.values.push_back(static_cast<float>((t * 37 + node * 11) % 100) - 20);
    }
    for (int cell = 0; has_activity && cell < shape.cells; ++cell) {
      time.statuses.push_back((t + cell) % 3 == 0 ? 1 : 0);
    }
    times.push_back(time);
  }
  return times;
}

XmdfData depth(const std::string& path = "run1/Temporal/Depth", bool has_activity = true) {
  return {path, shape, outputs(7, has_activity)};
}

std::vector<int> all_wet(int cells) {
  return std::vector<int>(static_cast<std::size_t>(cells), 1);
}

void deflate(hid_t properties) {
  H5Pset_deflate(properties, 6);
}
void shuffle_and_deflate(hid_t properties) {
  H5Pset_shuffle(properties);
  H5Pset_deflate(properties, 1);
}

void expect_trimmed(const Workspace& folder, std::vector<DatTime> times,
                    const std::vector<int>& statuses = {}) {
  const auto written = READ_XMDF(folder, "out.xmdf", "Trim/Temporal/trim50");
  ASSERT_EQ(written.size(), times.size());
  for (std::size_t t = 0; t < times.size(); ++t) {
    for (float& value : times[t].values) value = std::min(value, 50.0F);
    EXPECT_EQ(written[t].time, times[t].time);
    EXPECT_EQ(written[t].values, times[t].values);
    EXPECT_EQ(written[t].statuses, times[t].statuses.empty() ? statuses : times[t].statuses);
  }
}

struct ForeignForm {
  std::string what;
  XmdfForm form;
  std::string path;
  std::string selection;
};

class ForeignFiles : public ::testing::TestWithParam<ForeignForm> {};

TEST_P(ForeignFiles, GiveTheSameNumbers) {
  const Workspace folder;
  const ForeignForm& foreign = GetParam();
  MAKE_XMDF(folder, "a.xmdf", {depth(foreign.path)}, foreign.form);
  const RunResult run = RUN(folder, WORDS("-b -trim50 -out out.xmdf a.xmdf " + foreign.selection));
  SCOPED_TRACE(foreign.what + run.output);
  expect_trimmed(folder, outputs(7));
  const std::string units = foreign.form.time_units;
  EXPECT_TRUE(run.has_line("Time Units: " + units));
  const int warnings = units == "Hours" ? 0 : 1;
  EXPECT_EQ(run.count_lines_with("WARNING - Times are taken to be hours."), warnings);
}

constexpr const char* engine_path = "run1/Temporal/Depth";
constexpr const char* by_type = "-typed";

INSTANTIATE_TEST_SUITE_P(
    All, ForeignFiles,
    ::testing::Values(
        ForeignForm{"contiguous", {.chunk_times = 0}, engine_path, by_type},
        ForeignForm{"compressed", {.filters = deflate}, engine_path, by_type},
        ForeignForm{"shuffled", {.filters = shuffle_and_deflate}, engine_path, by_type},
        ForeignForm{"several outputs together",
                    {.chunk_times = 3, .filters = deflate},
                    engine_path,
                    by_type},
        ForeignForm{"all outputs, some nodes",
                    {.chunk_times = 7, .chunk_nodes = 11, .filters = shuffle_and_deflate},
                    engine_path,
                    by_type},
        ForeignForm{"in pieces, not compressed",
                    {.chunk_times = 2, .chunk_nodes = 9},
                    engine_path,
                    by_type},
        ForeignForm{"32-bit times", {.has_short_times = true}, engine_path, by_type},
        ForeignForm{"no group types", {.has_group_types = false}, engine_path, by_type},
        ForeignForm{"seconds", {.time_units = "Seconds"}, engine_path, by_type},
        ForeignForm{"under the root", {.has_group_types = false}, "Depth", "-pathdepth"},
        ForeignForm{"deep down", {}, "a/b/c/Temporal/d/Depth", by_type}));

TEST(XmdfActivity, ThatIsMissingMakesEveryCellWet) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth("r/Maximums/Depth"), depth(engine_path, false)});
  MAKE_XMDF(folder, "b.xmdf", {depth("r/Maximums/Depth", false), depth()});
  MAKE_XMDF(folder, "c.xmdf", {depth(engine_path, false)});
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  expect_trimmed(folder, outputs(7, false), all_wet(shape.cells));
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf b.xmdf"));
  expect_trimmed(folder, outputs(7));
  const RunResult run = RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf c.xmdf"));
  expect_trimmed(folder, outputs(7, false));
  EXPECT_TRUE(run.has_line("Number of cells: 0"));
}

TEST(XmdfActivity, ThatIsMissingFitsEveryOtherInput) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth(engine_path, false)});
  folder.write("b_d.dat", DAT_FILE(shape, "b", outputs(7)));
  RUN(folder, WORDS("-b -dif -nowetdry -typed -out out.xmdf a.xmdf b_d.dat"));
  const auto written = READ_XMDF(folder, "out.xmdf", "Difference/Temporal/diff_a - b_d");
  ASSERT_EQ(written.size(), 7U);
  for (std::size_t t = 0; t < written.size(); ++t) {
    EXPECT_EQ(written[t].values, std::vector<float>(40, 0.0F));
    EXPECT_EQ(written[t].statuses, outputs(7)[t].statuses);
  }
}

// One wrong thing in a file that is otherwise right.
struct Damage {
  std::string what;
  std::function<void(hid_t depth_group)> damage;
  std::string line;
  std::string arguments = "-trim50 -typed";
};

class WrongFiles : public ::testing::TestWithParam<Damage> {};

void expect_failure_line(const RunResult& run, const std::string& line) {
  const std::string end = "\n" + line + "\n\nPress Enter to Close\n";
  ASSERT_GT(run.output.size(), end.size());
  EXPECT_EQ(run.output.substr(run.output.size() - end.size()), end) << run.output;
  EXPECT_TRUE(run.ended_well());
}

TEST_P(WrongFiles, EndTheRunWithOneLine) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  {
    const XfFileHandle file(H5Fopen(folder.path("a.xmdf").c_str(), H5F_ACC_RDWR, H5P_DEFAULT));
    const XfGroupHandle group(H5Gopen2(file.get(), engine_path, H5P_DEFAULT));
    GetParam().damage(group.get());
  }
  folder.write("out.xmdf", "an earlier result");
  const RunResult run = RUN(folder, WORDS("-b -out out.xmdf a.xmdf " + GetParam().arguments));
  SCOPED_TRACE(GetParam().what);
  expect_failure_line(run, GetParam().line);
  EXPECT_EQ(folder.read("out.xmdf"), "an earlier result");
  const bool has_written = run.output.find("Creating scalar dataset") != std::string::npos;
  EXPECT_EQ(folder.has("out.xmdf.part"), has_written);
}

void remove_member(hid_t group, const char* name) {
  H5Ldelete(group, name, H5P_DEFAULT);
}

template <typename Value>
void replace(hid_t group, const char* name, hid_t type, const Shape& new_shape, Value value) {
  remove_member(group, name);
  hsize_t count = 1;
  for (const hsize_t extent : new_shape.extents) count *= extent;
  const hid_t memory = sizeof(Value) == 8 ? H5T_NATIVE_DOUBLE : H5T_NATIVE_FLOAT;
  make_member(group, name, type, new_shape, memory,
              std::vector<Value>(static_cast<std::size_t>(count), value));
}

const std::string in_depth = "a.xmdf, dataset \"run1/Temporal/Depth\": ";
const std::string reading_values =
    "ERROR - Reading data [XF_READ_SCALAR_VALUES_TIMESTEP] while reading " + in_depth;
const std::string reading_flags =
    "ERROR - Reading cell/wet dry flags [XF_READ_ACTIVITY_TIMESTEP] while reading " + in_depth;
const std::string counting_times =
    "ERROR - Extracting number of times [XF_GET_DATASET_NUM_TIMES] from xmdf file " + in_depth;

INSTANTIATE_TEST_SUITE_P(
    All, WrongFiles,
    ::testing::Values(
        Damage{"no version", [](hid_t group) { H5Ldelete(group, "/File Version", H5P_DEFAULT); },
               "ERROR - Determining XMDF Library Version."},
        Damage{"another kind of HDF5 file",
               [](hid_t group) { H5Ldelete(group, "/File Type", H5P_DEFAULT); },
               "ERROR - Could not open XMDF file \"a.xmdf\": an HDF5 file but not an XMDF file, it "
               "has no File Type"},
        Damage{"no values", [](hid_t group) { remove_member(group, "Values"); },
               "ERROR - Exracting Number of Values in Dataset [XF_GET_DATASET_NUMVALS]. a.xmdf: "
               "no vector dataset"},
        Damage{"no time units", [](hid_t group) { H5Adelete(group, "TimeUnits"); },
               "ERROR - Exracting Time Unit Dataset [XF_GET_DATASET_TIME_UNITS]. a.xmdf: no vector "
               "dataset"},
        Damage{"no times", [](hid_t group) { remove_member(group, "Times"); },
               counting_times + "Times is missing"},
        Damage{"too few times",
               [](hid_t group) {
                 replace(group, "Times", H5T_IEEE_F64LE, {{6}, {}, {}}, 1.0);
               },
               reading_values + "Times holds 6 output times, Values 7"},
        Damage{"times in two dimensions",
               [](hid_t group) {
                 replace(group, "Times", H5T_IEEE_F64LE, {{7, 1}, {}, {}}, 1.0);
               },
               counting_times + "Times: expected rank 1, found 2"},
        Damage{"too few flags",
               [](hid_t group) {
                 replace(group, "Active", H5T_STD_U8LE, {{6, 15}, {}, {}}, 1.0F);
               },
               reading_flags + "Times holds 7 output times, Active 6"},
        Damage{"flags that are reals",
               [](hid_t group) {
                 replace(group, "Active", H5T_IEEE_F32LE, {{7, 15}, {}, {}}, 1.0F);
               },
               "ERROR - Exracting Number Active in Dataset [XF_GET_DATASET_NUMACTIVE]. a.xmdf: no "
               "vector dataset"},
        Damage{"no output times, one asked for",
               [](hid_t group) {
                 replace(group, "Times", H5T_IEEE_F64LE, {{0}, {10}, {}}, 0.0);
                 replace(group, "Values", H5T_IEEE_F32LE, {{0, 40}, {1, 40}, {}}, 0.0F);
                 replace(group, "Active", H5T_STD_U8LE, {{0, 15}, {1, 15}, {}}, 0.0F);
               },
               reading_values + "there is no output time 1, the dataset has 0",
               "-trim50 -typed -t1"}));

TEST(XmdfFiles, WithoutOutputTimesGiveAnEmptyResult) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  {
    const XfFileHandle file(H5Fopen(folder.path("a.xmdf").c_str(), H5F_ACC_RDWR, H5P_DEFAULT));
    const XfGroupHandle group(H5Gopen2(file.get(), engine_path, H5P_DEFAULT));
    replace(group.get(), "Times", H5T_IEEE_F64LE, {{0}, {10}, {}}, 0.0);
    replace(group.get(), "Values", H5T_IEEE_F32LE, {{0, 40}, {1, 40}, {}}, 0.0F);
    replace(group.get(), "Active", H5T_STD_U8LE, {{0, 15}, {1, 15}, {}}, 0.0F);
  }
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  EXPECT_TRUE(READ_XMDF(folder, "out.xmdf", "Trim/Temporal/trim50").empty());
  const RunResult run = RUN(folder, WORDS("-b -max -typed -out max.xmdf a.xmdf"));
  EXPECT_TRUE(run.has_line("WARNING - No output times in \"a.xmdf\""));
  const auto maxima = READ_XMDF(folder, "max.xmdf", "MaxMax/Maximums/Max Value");
  ASSERT_EQ(maxima.size(), 1U);
  EXPECT_EQ(maxima[0].values, std::vector<float>(40, 0.0F));
}

// A file that is longer than others is not cut to their size, and not read past its end.
TEST(XmdfFiles, OfOtherSizesAreRefused) {
  const Workspace folder;
  const XmdfData larger{"r/Temporal/Depth", {41, 15}, {{0, all_wet(15), std::vector<float>(41)}}};
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  MAKE_XMDF(folder, "b.xmdf", {larger});
  MAKE_XMDF(folder, "c.xmdf", {depth("r/Maximums/Depth"), larger});
  const RunResult run = RUN(folder, WORDS("-b -dif -nowetdry -typed a.xmdf b.xmdf -out o"));
  EXPECT_NE(run.output.find("\nERROR - Number nodes and/or cells in b.xmdf not the same as in "
                            "primary .dat file.\nPress Enter to Continue\n"),
            std::string::npos);
  expect_failure_line(RUN(folder, WORDS("-b -trim50 -typed c.xmdf -out o")),
                      "ERROR - Reading data [XF_READ_SCALAR_VALUES_TIMESTEP] while reading c.xmdf, "
                      "dataset \"r/Temporal/Depth\": expected 40 values, found 41");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.xmdf", "b.xmdf", "c.xmdf"}));
}

TEST(XmdfFiles, WithGroupsThatHoldEachOtherAreRead) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  {
    const XfFileHandle file(H5Fopen(folder.path("a.xmdf").c_str(), H5F_ACC_RDWR, H5P_DEFAULT));
    const hid_t id = file.get();
    H5Lcreate_hard(id, "/", id, "/run1/Temporal/all", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_hard(id, "/run1", id, "/run1/Temporal/again", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_soft("/run1", id, "/run1/soft", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_external("a.xmdf", "/run1", id, "/outside", H5P_DEFAULT, H5P_DEFAULT);
  }
  const RunResult run = RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  EXPECT_TRUE(run.has_line("Number of scalar datasets: 1"));
  expect_trimmed(folder, outputs(7));
}

TEST(XmdfFiles, ThatAreNoneAreRefused) {
  const Workspace folder;
  folder.write("text.xmdf", "a text");
  folder.write("empty.xmdf", "");
  fs::create_directories(folder.path("folder.xmdf"));
  for (const auto& [name, reason] : std::vector<std::pair<std::string, std::string>>{
           {"missing.xmdf", "No such file or directory"},
           {"text.xmdf", "not an HDF5 file"},
           {"empty.xmdf", "not an HDF5 file"},
           {"folder.xmdf", "Is a directory"}}) {
    expect_failure_line(RUN(folder, {"-b", "-max", "-typed", "-out", "out", name}),
                        "ERROR - Could not open XMDF file \"" + name + "\": " + reason);
  }
  EXPECT_FALSE(folder.has("out.xmdf"));
}

TEST(XmdfFiles, CutAnywhereEndTheRunBeforeAnythingIsWritten) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()}, {.filters = deflate});
  const std::string whole = folder.read("a.xmdf");
  for (std::size_t length = 0; length < whole.size(); length += whole.size() / 40) {
    folder.write("a.xmdf", whole.substr(0, length));
    const RunResult run = RUN(folder, WORDS("-b -max -typed -out out.xmdf a.xmdf"));
    EXPECT_EQ(run.count_lines_with("ERROR - "), 1) << length;
    EXPECT_EQ(run.count_lines_with("ERROR - Could not open XMDF file \"a.xmdf\": "), 1) << length;
    EXPECT_TRUE(run.ended_well()) << length;
    ASSERT_EQ(folder.names(), std::vector<std::string>{"a.xmdf"}) << length;
  }
}

// The bytes of the second output time of a member, found through HDF5.
void damage_second_chunk(const Workspace& folder, const std::string& member) {
  hsize_t size = 0;
  haddr_t address = 0;
  {
    const XfFileHandle file(H5Fopen(folder.path("a.xmdf").c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
    const std::string path = std::string(engine_path) + "/" + member;
    const XfDatasetHandle dataset(H5Dopen2(file.get(), path.c_str(), H5P_DEFAULT));
    const hsize_t second[2] = {1, 0};
    unsigned mask = 0;
    ASSERT_GE(H5Dget_chunk_info_by_coord(dataset.get(), second, &mask, &address, &size), 0);
  }
  std::string bytes = folder.read("a.xmdf");
  bytes[address + size / 2] = static_cast<char>(bytes[address + size / 2] ^ 0x55);
  folder.write("a.xmdf", bytes);
}

TEST(XmdfFiles, WithDamagedCompressedBytesEndTheRun) {
  for (const auto& [member, line] : std::vector<std::pair<std::string, std::string>>{
           {"Values", reading_values}, {"Active", reading_flags}}) {
    const Workspace folder;
    MAKE_XMDF(folder, "a.xmdf", {depth()}, {.filters = deflate});
    damage_second_chunk(folder, member);
    folder.write("out.xmdf", "an earlier result");
    expect_failure_line(RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf")),
                        line + member + " of output time 2 has damaged compressed bytes");
    EXPECT_EQ(folder.read("out.xmdf"), "an earlier result");
  }
}

// A full disk, within the first output time (2.4 MB of vectors) and in the magnitudes of the second
// (which end at 7.2 MB): the failing call is named.
class FullDisksOfXmdf : public ::testing::TestWithParam<std::pair<rlim_t, std::string>> {};

TEST_P(FullDisksOfXmdf, EndTheRunAndLeaveTheEarlierResult) {
  const Workspace folder;
  const std::int32_t nodes = 300000;
  std::vector<DatTime> times;
  for (const float hours : {0.0F, 1.0F, 2.0F}) {
    times.push_back({hours, {}, std::vector<float>(static_cast<std::size_t>(2 * nodes), hours)});
  }
  MAKE_XMDF(folder, "a.xmdf", {{"r/Temporal/Vector Velocity", {nodes, 0, true}, times}});
  folder.write("out.xmdf", "an earlier result");
  const auto& [room, call] = GetParam();
  const RunResult run =
      RUN(folder, WORDS("-b -trim50 -typev -out out.xmdf a.xmdf"), {.largest_file = room});
  expect_failure_line(run, "ERROR - " + call + " out.xmdf: File too large");
  EXPECT_EQ(folder.read("out.xmdf"), "an earlier result");
  EXPECT_TRUE(folder.has("out.xmdf.part"));
}

INSTANTIATE_TEST_SUITE_P(
    All, FullDisksOfXmdf,
    ::testing::Values(
        std::pair<rlim_t, std::string>{1000000, "Writing data [XF_WRITE_VECTOR_TIMESTEP]"},
        std::pair<rlim_t, std::string>{7000000, "Writing data [XF_WRITE_SCALAR_TIMESTEP]"}));

TEST(XmdfOutputs, AreReplacedWhenCompleteAndEqualRunsGiveEqualBytes) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  folder.write("out.xmdf", "an earlier result");
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  expect_trimmed(folder, outputs(7));
  fs::rename(folder.path("out.xmdf"), folder.path("first.xmdf"));
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  EXPECT_TRUE(folder.read("out.xmdf") == folder.read("first.xmdf"));
}

TEST(XmdfOutputs, ThatAreInputsOrCannotBeCreatedAreRefused) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  const std::string before = folder.read("a.xmdf");
  expect_failure_line(RUN(folder, WORDS("-b -trim50 -typed -out ./a.xmdf a.xmdf")),
                      "ERROR - Output file is also an input file: \"./a.xmdf\"");
  expect_failure_line(
      RUN(folder, WORDS("-b -trim50 -typed -out none/out.xmdf a.xmdf")),
      "ERROR - Creating file [XF_CREATE_FILE] none/out.xmdf: No such file or directory");
  EXPECT_TRUE(folder.read("a.xmdf") == before);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a.xmdf"});
}

}  // namespace
}  // namespace quillet::testing
