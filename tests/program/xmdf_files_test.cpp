// XMDF files of other writers, damaged files, full disks: right numbers, or one line that says what
// is wrong and no output.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "same_results.h"
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

constexpr const char* engine_path = "run1/Temporal/Depth";

TEST(ForeignFiles, GiveTheSameNumbers) {
  const auto expect = [](const XmdfForm& form, const std::string& path = engine_path,
                         const std::string& selection = "-typed") {
    const Workspace folder;
    MAKE_XMDF(folder, "a.xmdf", {depth(path)}, form);
    const RunResult run = RUN(folder, WORDS("-b -trim50 -out out.xmdf a.xmdf " + selection));
    SCOPED_TRACE(run.output);
    expect_trimmed(folder, outputs(7));
    const std::string units = form.time_units;
    EXPECT_TRUE(run.has_line("Time Units: " + units));
    const int warnings = units == "Hours" ? 0 : 1;
    EXPECT_EQ(run.count_lines_with("WARNING - Times are taken to be hours."), warnings);
  };
  expect({.chunk_times = 7, .chunk_nodes = 11, .filters = shuffle_and_deflate});
  expect({.has_short_times = true});
  expect({.time_units = "Seconds"});
  expect({.has_group_types = false}, "Depth", "-pathdepth");
  expect({}, "a/b/c/Temporal/d/Depth");
}

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

void expect_failure_line(const RunResult& run, const std::string& line) {
  const std::string end = "\n" + line + "\n\nPress Enter to Close\n";
  ASSERT_GT(run.output.size(), end.size())
      << "exit status " << run.exit_status << ", signal " << run.signal << ", output:\n"
      << run.output;
  EXPECT_EQ(run.output.substr(run.output.size() - end.size()), end) << run.output;
  EXPECT_TRUE(run.ended_well());
}

// One wrong thing in a file that is otherwise right.
using Damage = std::function<void(hid_t depth_group)>;

void make_damaged(const Workspace& folder, const Damage& damage) {
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  const XfFileHandle file(H5Fopen(folder.path("a.xmdf").c_str(), H5F_ACC_RDWR, H5P_DEFAULT));
  const XfGroupHandle group(H5Gopen2(file.get(), engine_path, H5P_DEFAULT));
  damage(group.get());
}

Damage removed(const char* name) {
  return [name](hid_t group) { H5Ldelete(group, name, H5P_DEFAULT); };
}

Damage replaced(const char* name, hid_t type, const std::vector<hsize_t>& extents) {
  return [=](hid_t group) {
    H5Ldelete(group, name, H5P_DEFAULT);
    hsize_t count = 1;
    for (const hsize_t extent : extents) count *= extent;
    std::vector<hsize_t> chunk(extents);
    chunk[0] = 10;
    make_member(group, name, type, {extents, chunk, {}}, H5T_NATIVE_FLOAT,
                std::vector<float>(static_cast<std::size_t>(count), 1));
  };
}

void remove_output_times(hid_t group) {
  replaced("Times", H5T_IEEE_F64LE, {0})(group);
  replaced("Values", H5T_IEEE_F32LE, {0, 40})(group);
  replaced("Active", H5T_STD_U8LE, {0, 15})(group);
}

TEST(WrongFiles, EndTheRunWithOneLine) {
  const auto expect = [](const Damage& damage, const std::string& line,
                         const std::string& more = "") {
    const Workspace folder;
    make_damaged(folder, damage);
    folder.write("out.xmdf", "an earlier result");
    const RunResult run = RUN(folder, WORDS("-b -out out.xmdf a.xmdf -trim50 -typed " + more));
    expect_failure_line(run, "ERROR - " + line);
    EXPECT_EQ(folder.read("out.xmdf"), "an earlier result");
    const bool has_written = run.output.find("Creating scalar dataset") != std::string::npos;
    EXPECT_EQ(folder.has("out.xmdf.part"), has_written);
  };
  const std::string in_depth = "\n   \"a.xmdf\", dataset \"run1/Temporal/Depth\": ";
  const std::string reading_values =
      "Reading data [XF_READ_SCALAR_VALUES_TIMESTEP] while reading a.xmdf" + in_depth;
  expect(removed("/File Version"),
         "Determining XMDF Library Version.\n   \"a.xmdf\": File Version is missing or no number");
  expect(removed("/File Type"),
         "Could not open XMDF file \"a.xmdf\"\n   \"a.xmdf\": an HDF5 file but not an XMDF file, "
         "it has no File Type");
  expect(removed("Values"), "Exracting Number of Values in Dataset [XF_GET_DATASET_NUMVALS]." +
                                in_depth + "Values is missing");
  expect([](hid_t group) { H5Adelete(group, "TimeUnits"); },
         "Exracting Time Unit Dataset [XF_GET_DATASET_TIME_UNITS]." + in_depth +
             "TimeUnits is missing or no text");
  expect(removed("Times"),
         "Extracting number of times [XF_GET_DATASET_NUM_TIMES] from xmdf file a.xmdf" + in_depth +
             "Times is missing");
  expect(replaced("Times", H5T_IEEE_F64LE, {6}),
         reading_values + "Times holds 6 output times, Values 7");
  expect(replaced("Active", H5T_STD_U8LE, {6, 15}),
         "Reading cell/wet dry flags [XF_READ_ACTIVITY_TIMESTEP] while reading a.xmdf" + in_depth +
             "Times holds 7 output times, Active 6");
  expect(replaced("Active", H5T_IEEE_F32LE, {7, 15}),
         "Exracting Number Active in Dataset [XF_GET_DATASET_NUMACTIVE]." + in_depth +
             "Active holds no flags");
  expect(remove_output_times, reading_values + "there is no output time 1, the dataset has 0",
         "-t1");
}

// A text of variable length is a reference: length, address of a heap, place in the heap. HDF5 goes
// to any place.
std::string with_wild_reference(const Workspace& folder) {
  const std::string text = "DATASET SCALAR";
  make_damaged(folder, [&](hid_t group) {
    H5Adelete(group, "Grouptype");
    const XfTypeHandle type(H5Tcopy(H5T_C_S1));
    H5Tset_size(type.get(), H5T_VARIABLE);
    const XfSpaceHandle space(H5Screate(H5S_SCALAR));
    const XfAttributeHandle attribute(
        H5Acreate2(group, "Grouptype", type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT));
    const char* const value = text.c_str();
    EXPECT_GE(H5Awrite(attribute.get(), type.get(), &value), 0);
  });
  std::string bytes = folder.read("a.xmdf");
  const std::string length{static_cast<char>(text.size()), 0, 0, 0};
  return bytes.replace(bytes.find(length, bytes.rfind("Grouptype")) + 12, 4, 4, '\xff');
}

TEST(DamagedAttributes, EndTheRunWithOneLineThoughHdf5Crashes) {
  const Workspace folder;
  const std::string damaged = with_wild_reference(folder);
  EXPECT_TRUE(RUN(folder, WORDS("-b -times -typed a.xmdf -out o.txt")).has_line("Finished."));
  fs::remove(folder.path("o.txt"));
  for (const char* operation : {"-xnfo", "-conv", "-ensight", "-max -typed", "-trim1 -typed"}) {
    folder.write("a.xmdf", damaged);
    const RunResult run = RUN(folder, WORDS("-b a.xmdf " + std::string(operation)));
    expect_failure_line(run,
                        "ERROR - Reading file \"a.xmdf\": expected intact HDF5 headers, found "
                        "damage that HDF5 cannot cope with");
    EXPECT_EQ(run.count_lines_with("Build"), 1);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"a.xmdf"});
  }
}

// The console keeps its order though all files are tried before the first is opened.
TEST(DamagedAttributes, AreToldAtTheirFilesTurn) {
  const Workspace folder;
  folder.write("b.xmdf", with_wild_reference(folder));
  make_damaged(folder, [](hid_t) {});
  const RunResult run = RUN(folder, WORDS("-b -max -typed a.xmdf b.xmdf"));
  const auto first = run.output.find("Opening XMDF file \"a.xmdf\"\nDone.\nXMDF Version: ");
  EXPECT_LT(first, run.output.find("\nOpening XMDF file \"b.xmdf\"\n\nERROR - Reading file "
                                   "\"b.xmdf\": expected intact HDF5 headers, found damage "));
}

TEST(XmdfFiles, ThatArePipesAreNotOpened) {
  const Workspace folder;
  ASSERT_EQ(::mkfifo(folder.path("pipe.xmdf").c_str(), 0600), 0);
  const RunResult run = RUN(folder, WORDS("-b -max -typed pipe.xmdf"));
  expect_failure_line(run, "   \"pipe.xmdf\": Not a regular file");
}

TEST(XmdfFiles, WithoutOutputTimesGiveAnEmptyResult) {
  const Workspace folder;
  make_damaged(folder, remove_output_times);
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  EXPECT_TRUE(READ_XMDF(folder, "out.xmdf", "Trim/Temporal/trim50").empty());
  const auto again = RUN(folder, {"-trim1", "-b", "-s1", "-out", "again.xmdf", "out.xmdf"});
  EXPECT_TRUE(again.has_line("Number of nodes: 40")) << again.output;
  const RunResult own = RUN(folder, WORDS("-b -max -pathtrim50 -out own.xmdf out.xmdf"));
  EXPECT_TRUE(own.has_line("WARNING - No output times in \"out.xmdf\"")) << own.output;
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
                            "primary .dat file.\n   Found nodes 41, cells 15, expected nodes 40, "
                            "cells 15 as in \"a.xmdf\"\nPress Enter to Continue\n"),
            std::string::npos)
      << run.output;
  expect_failure_line(RUN(folder, WORDS("-b -trim50 -typed c.xmdf -out o")),
                      "ERROR - Reading data [XF_READ_SCALAR_VALUES_TIMESTEP] while reading c.xmdf\n"
                      "   \"c.xmdf\", dataset \"r/Temporal/Depth\": expected 40 values, found 41");
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.xmdf", "b.xmdf", "c.xmdf"}));
}

TEST(XmdfFiles, ThatAreNoneAreRefused) {
  const Workspace folder;
  folder.write("text.xmdf", "a text");
  folder.write("empty.xmdf", "");
  fs::create_directories(folder.path("folder.xmdf"));
  MAKE_XMDF(folder, "whole.xmdf", {depth()});
  const std::string whole = folder.read("whole.xmdf");
  folder.write("cut.xmdf", whole.substr(0, 1000));
  const std::string size = std::to_string(whole.size());
  for (const auto& [name, reason] : std::vector<std::pair<std::string, std::string>>{
           {"missing.xmdf", "No such file or directory"},
           {"text.xmdf", "not an HDF5 file"},
           {"empty.xmdf", "not an HDF5 file"},
           {"folder.xmdf", "Is a directory"},
           {"cut.xmdf", "truncated, expected " + size + " bytes, found 1000"}}) {
    expect_failure_line(
        RUN(folder, {"-b", "-max", "-typed", "-out", "out", name}),
        "ERROR - Could not open XMDF file \"" + name + "\"\n   \"" + name + "\": " + reason);
  }
  EXPECT_FALSE(folder.has("out.xmdf"));
}

// A full disk, within the first output time (2.4 MB of vectors) and in the magnitudes of the second
// (which end at 7.2 MB), and when what HDF5 still holds is written at the end: the failing call is
// named.
TEST(FullDisksOfXmdf, EndTheRunAndLeaveTheEarlierResult) {
  const Workspace folder;
  const std::int32_t nodes = 300000;
  std::vector<DatTime> times;
  for (const float hours : {0.0F, 1.0F, 2.0F}) {
    times.push_back({hours, {}, std::vector<float>(static_cast<std::size_t>(2 * nodes), hours)});
  }
  MAKE_XMDF(folder, "a.xmdf", {{"r/Temporal/Vector Velocity", {nodes, 0, true}, times}});
  folder.write("out.xmdf", "an earlier result");
  for (const auto& [room, call] : std::vector<std::pair<rlim_t, std::string>>{
           {1000000, "Writing data [XF_WRITE_VECTOR_TIMESTEP] out.xmdf"},
           {7000000, "Writing data [XF_WRITE_SCALAR_TIMESTEP] out.xmdf"},
           {10829000, "Closing file [XF_CLOSE_FILE]"}}) {
    const RunResult run =
        RUN(folder, WORDS("-b -trim50 -typev -out out.xmdf a.xmdf"), {.largest_file = room});
    expect_failure_line(run, "ERROR - " + call + "\n   \"out.xmdf\": File too large");
    EXPECT_EQ(folder.read("out.xmdf"), "an earlier result");
    EXPECT_TRUE(folder.has("out.xmdf.part"));
  }
}

TEST(XmdfOutputs, AreReplacedWhenCompleteAndEqualRunsGiveEqualBytes) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  folder.write("out.xmdf", "an earlier result");
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  expect_trimmed(folder, outputs(7));
  fs::rename(folder.path("out.xmdf"), folder.path("first.xmdf"));
  RUN(folder, WORDS("-b -trim50 -typed -out out.xmdf a.xmdf"));
  EXPECT_TRUE(SAME_RESULTS(folder.read("out.xmdf"), folder.read("first.xmdf")));
}

TEST(XmdfOutputs, ThatAreInputsOrCannotBeCreatedAreRefused) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {depth()});
  const std::string before = folder.read("a.xmdf");
  expect_failure_line(RUN(folder, WORDS("-b -trim50 -typed -out ./a.xmdf a.xmdf")),
                      "ERROR - Output file is also an input file: \"./a.xmdf\"");
  expect_failure_line(
      RUN(folder, WORDS("-b -trim50 -typed -out none/out.xmdf a.xmdf")),
      "ERROR - Creating file [XF_CREATE_FILE] none/out.xmdf\n   No such file or directory");
  // Noticed before the work, as for a .dat output.
  fs::create_directories(folder.path("folder.xmdf"));
  expect_failure_line(RUN(folder, WORDS("-b -trim50 -typed -out folder.xmdf a.xmdf")),
                      "ERROR - Creating file [XF_CREATE_FILE] folder.xmdf\n   Is a directory");
  EXPECT_FALSE(folder.has("folder.xmdf.part"));
  fs::remove(folder.path("folder.xmdf"));
  EXPECT_TRUE(SAME_RESULTS(folder.read("a.xmdf"), before));
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a.xmdf"});
}

}  // namespace
}  // namespace quillet::testing
