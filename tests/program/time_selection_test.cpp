// -k, -r, -rangeA and -rangeB, -con, -times on small files: every byte of what they write and of
// what they say, worked out by hand.
#include <cmath>

#include "program/file_runs.h"
#include "program/set_up_text.h"
#include "program/xmdf_view.h"
#include "same_results.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

using Times = std::vector<DatTime>;

constexpr DatShape shape{3, 2};
constexpr float near_one = 1.00009F;

// The second output time states no statuses: those of the first are in force.
const DatTime half{0.5F, {1, -3}, {1, 2, 3}};
const DatTime near_one_unstated{near_one, {}, {4, 5, 6}};
const DatTime near_one_full{near_one, {1, -3}, {4, 5, 6}};
const DatTime one{1, {0, 1}, {7, 8, 9}};
const DatTime late{27.5F, {1, 1}, {-1, -2, -3}};
const DatTime stored{99999, {1, 0}, {9, 9, 9}};
const std::string input = DAT_FILE(shape, "depth", {half, near_one_unstated, one, late, stored});

FileRun selection(const std::string& arguments) {
  return FileRun(arguments, "-out out.dat a_d.dat " + arguments, {{"a_d.dat", input}});
}
std::string selected(const std::string& name, const Times& times) {
  return DAT_FILE(shape, name, times);
}

INSTANTIATE_TEST_SUITE_P(
    SelectedTimes, FileRuns,
    ::testing::Values(
        selection("-k1").gives(selected("Keep a_d", {near_one_full})),
        selection("-k1 -dttol0.00001").gives(selected("Keep a_d", {one})),
        selection("-k1 -dttol0").says("ERROR - Could not find specified timestep in .dat file."),
        selection("-r1")
            .gives(selected("out", {half, late, stored}))
            .says("Skipping time to remove, time found: 1.00009")
            .says("Skipping time to remove, time found: 1"),
        selection("-r5")
            .gives(selected("out", {half, near_one_full, one, late, stored}))
            .says("WARNING - Time to remove was not found: 5"),
        selection("-rangeA1 -rangeB27.5").gives(selected("Range a_d", {near_one_full, one, late})),
        selection("-rangeA1.25 -rangeB27.25 -dttol0.25")
            .gives(selected("Range a_d", {near_one_full, one, late})),
        selection("-rangeA1.3 -rangeB27.2 -dttol0.25 -typed")
            .gives(selected("Depth", {}))
            .says("WARNING - No output times in the range."),
        selection("-rangeA0.6 -rangeB1 -typezz").gives(selected("out", {near_one_full, one})),
        selection("-rangeA-1 -rangeB100000")
            .gives(selected("Range a_d", {half, near_one_full, one, late, stored}))),
    NameOfCase{});

// Joining what two ranges cut apart gives back the output times. A restart's overlap and stored
// maxima are passed over; statuses stated there hold for what follows.
TEST(Concatenate, JoinsRangesAndRestarts) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE(shape, "depth", {half, near_one_unstated, late, stored}));
  const DatTime last{99998, {0, 0}, {1, 1, 1}};
  folder.write("restart_d.dat", DAT_FILE(shape, "depth",
                                         {one,
                                          {27.5F, {0, 7}, {8, 8, 8}},
                                          {30, {}, {2, 2, 2}},
                                          last,
                                          {99998.01F, {1, 1}, {3, 3, 3}}}));
  RUN(folder, WORDS("-b -rangeA0 -rangeB0.7 -out 1_d.dat a_d.dat"));
  RUN(folder, WORDS("-b -rangeA0.7 -rangeB99999 -out 2_d.dat a_d.dat"));
  const RunResult run = RUN(folder, WORDS("-b -con -out all.dat 1_d.dat 2_d.dat restart_d.dat"));
  EXPECT_TRUE(SAME_RESULTS(
      folder.read("all.dat"),
      DAT_FILE(shape, "all", {half, near_one_full, late, {30, {0, 7}, {2, 2, 2}}, last})))
      << run.output;
  for (const char* line : {"Skipping times above 99,998, time found: 99999",
                           "Skipping time already written, time found: 1",
                           "Skipping time already written, time found: 27.5",
                           "Skipping times above 99,998, time found: 99998.01"}) {
    EXPECT_TRUE(run.has_line(line)) << line;
  }
}

// A vector file of maxima: its maps of sources and times hold one value per node.
const DatTime maxima{111111, {1}, {3, 4, 0, 1}};
const DatTime sources{222222, {1}, {1, 2}};
const std::string vector_maxima = DAT_FILE({2, 1, true}, "Max Value", {maxima, sources});

TEST(Vectors, StayVectorsAndTheirMapsStayScalars) {
  const Workspace folder;
  folder.write("a_v.dat", vector_maxima);
  RUN(folder, WORDS("-b -r5 -out all.dat a_v.dat"));
  RUN(folder, WORDS("-b -r111111 -out map.dat a_v.dat"));
  RUN(folder, WORDS("-b -rangeA1 -rangeB2 -out none.dat a_v.dat"));
  EXPECT_TRUE(
      SAME_RESULTS(folder.read("all.dat"), DAT_FILE({2, 1, true}, "all", {maxima, sources})));
  EXPECT_TRUE(SAME_RESULTS(folder.read("map.dat"), DAT_FILE({2, 1}, "map", {sources})));
  EXPECT_TRUE(SAME_RESULTS(folder.read("none.dat"), DAT_FILE({2, 1, true}, "Range a_v", {})));
}

// A series and stored maxima; vectors without activity.
constexpr DatShape small{2, 1};
constexpr DatShape small_vectors{2, 1, true};
const DatTime xmdf_start{0, {1}, {1, 2}};
const DatTime xmdf_half{0.5F, {0}, {3, 4}};
const DatTime xmdf_one{1, {1}, {5, 6}};
const DatTime xmdf_stored{0, {1}, {9, 9}};

void write_xmdf(const Workspace& folder) {
  MAKE_XMDF(folder, "r.xmdf",
            {{"r/Temporal/Depth", small, {xmdf_start, xmdf_half, xmdf_one}},
             {"r/Maximums/Depth", small, {xmdf_stored}},
             {"r/Temporal/Vector Velocity",
              small_vectors,
              {{0, {}, {3, 4, 0, 1}}, {2, {}, {6, 8, 0, -2}}}}});
}

// Without activity every cell counts as wet; vectors get their magnitudes beside them.
TEST(XmdfSelections, AreWrittenAsXmdf) {
  const Workspace folder;
  write_xmdf(folder);
  const DatTime before{-1, {0}, {8, 9}}, same_time{0.5F, {1}, {7, 7}};
  folder.write("a_d.dat", DAT_FILE(small, "depth", {before, same_time}));
  const auto expect = [&](const std::string& arguments, const std::string& path,
                          const Times& kept) {
    const RunResult run = RUN(folder, WORDS("-b -out out.xmdf " + arguments));
    EXPECT_TRUE(DAT_FILE(small, "", READ_XMDF(folder, "out.xmdf", path)) ==
                DAT_FILE(small, "", kept))
        << run.output;
  };
  expect("-k0.75 -dttol0.25 -typed r.xmdf", "Keep/Temporal/Keep r", {xmdf_half});
  expect("-r0 -typeV r.xmdf", "Remove/Temporal/out_mag", {{2, {1}, {10, 2}}});
  expect("-rangeA0.5 -rangeB1 -typed r.xmdf", "Range/Temporal/Depth", {xmdf_half, xmdf_one});
  expect("-rangeA0 -rangeB1 -typezz a_d.dat", "Range/Temporal/out", {same_time});
  expect("-con -typed a_d.dat r.xmdf", "Concatenate/Temporal/out", {before, same_time, xmdf_one});
  expect("-dur3.5 -typed r.xmdf", "Duration/Temporal/dur3.5", {{0, {1}, {0.375F, 0.625F}}});
}

TEST(Times, OfAnXmdfFileStandOnTheConsoleAndInATextFile) {
  const Workspace folder;
  write_xmdf(folder);
  const RunResult run = RUN(folder, WORDS("-times -b -typed -out list r.xmdf"));
  const std::string expected = "          0.000\n          0.500\n          1.000\n";
  EXPECT_EQ(folder.read("list.txt"), expected);
  const std::string end = "Output Text File: list.txt\n\nTimes in file: r.xmdf\n" + expected +
                          "Closing .xmdf file: r.xmdf\nClosing output file.\nDone\n\nFinished.\n";
  EXPECT_EQ(run.output.substr(run.output.find("Output Text File")), end);
}

// Replaces the output times by 64-bit ones.
void set_times(const Workspace& folder, const std::string& name, const std::vector<double>& hours) {
  const XfFileHandle file(H5Fopen(folder.path(name).c_str(), H5F_ACC_RDWR, H5P_DEFAULT));
  const XfDatasetHandle times(H5Dopen2(file.get(), "r/Temporal/Depth/Times", H5P_DEFAULT));
  ASSERT_GE(H5Dwrite(times.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, hours.data()),
            0);
}

std::vector<double> written_hours(const Workspace& folder, const std::string& name) {
  const XfFileHandle file(H5Fopen(folder.path(name).c_str(), H5F_ACC_RDONLY, H5P_DEFAULT));
  const XfGroupHandle group(H5Gopen2(file.get(), "Concatenate/Temporal/out", H5P_DEFAULT));
  return XMDF_MEMBER<double>(group.get(), "Times", H5T_NATIVE_DOUBLE);
}

// Times that 32 bits cannot tell apart.
TEST(LongXmdfTimes, AreToldApart) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {{"r/Temporal/Depth", small, {xmdf_start, xmdf_half}}});
  MAKE_XMDF(folder, "b.xmdf", {{"r/Temporal/Depth", small, {xmdf_half, xmdf_one}}});
  set_times(folder, "a.xmdf", {20000.001, 20000.0021});
  set_times(folder, "b.xmdf", {20000.0021, 20000.003});
  RUN(folder, WORDS("-times -b -typed -out list a.xmdf"));
  EXPECT_EQ(folder.read("list.txt"), "      20000.001\n      20000.002\n");
  const RunResult run = RUN(folder, WORDS("-b -con -typed -out out.xmdf a.xmdf b.xmdf"));
  EXPECT_EQ(written_hours(folder, "out.xmdf"),
            (std::vector<double>{20000.001, 20000.0021, 20000.003}))
      << run.output;
}

// A .dat file holds the same hours less exactly.
TEST(LongXmdfTimes, AreThoseOfDatFilesInFewerBits) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", {{"r/Temporal/Depth", small, {xmdf_start, xmdf_half}}});
  set_times(folder, "a.xmdf", {0.1, 0.7});
  folder.write("b_d.dat", DAT_FILE(small, "d", {{0.7F, {1}, {8, 8}}, {0.9F, {1}, {9, 9}}}));
  const RunResult run = RUN(folder, WORDS("-b -con -typed -out out.xmdf a.xmdf b_d.dat"));
  EXPECT_TRUE(run.has_line("Skipping time already written, time found: 0.7")) << run.output;
  EXPECT_EQ(written_hours(folder, "out.xmdf"), (std::vector<double>{0.1, 0.7, 0.9F}));
}

TEST(TimesThatAreNoNumbers, EndTheRun) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE(small, "d", {xmdf_start, {NAN, {1}, {3, 4}}, xmdf_one}));
  for (const std::string operation : {"-con a_d.dat", "-dur1", "-toi1"}) {
    const RunResult run = RUN(folder, WORDS("-b -out out.dat a_d.dat " + operation));
    EXPECT_TRUE(
        run.has_line("ERROR - Reading file \"a_d.dat\": expected an output time, found one "
                     "that is not a number"))
        << run.output;
    EXPECT_FALSE(folder.has("out.dat"));
  }
}

// Whole consoles.
constexpr DatShape one_node{1, 2};
const std::string short_input =
    DAT_FILE(one_node, "data", {{0, {}, {1}}, {1, {}, {2}}, {99999, {}, {3}}});

const SetUpText::Input input_a{"a_d.dat", "_d", "a.2dm"};
const SetUpText::Input input_b{"b_d.dat", "_d", "b.2dm"};

struct SelectionConsole {
  std::string arguments, operation, output;
  std::string said;   // by the operation
  std::string bytes;  // of the output; empty: there is none
};

std::string find_text(const std::string& hours) {
  return "Reading data for time " + hours + "\nDone.\n";
}
const std::string files_closed = "\nClosing files and exiting\n\n";
const std::string end = files_closed + closing_text + end_text;
const std::string three_found = HEADER_TEXT("a_d.dat", one_node) + find_text("0.000") +
                                find_text("1.000") + find_text("99999.000");

std::string kept(const std::string& name, const Times& times) {
  return DAT_FILE(one_node, name, times);
}

SelectionConsole console(const std::string& arguments, const std::string& operation,
                         const std::string& output, const std::string& said,
                         const std::string& bytes) {
  return {arguments, operation, output, said, bytes};
}

class SelectionConsoles : public ::testing::TestWithParam<SelectionConsole> {};

TEST_P(SelectionConsoles, FromStartToEnd) {
  const auto& [arguments, operation, output, said, bytes] = GetParam();
  std::vector<SetUpText::Input> inputs{input_a};
  if (arguments.find("b_d") != std::string::npos) inputs.push_back(input_b);
  const Workspace folder;
  folder.write("a_d.dat", short_input);
  folder.write("b_d.dat", short_input);
  EXPECT_EQ(RUN(folder, WORDS(arguments)).output,
            SET_UP({operation, inputs, one_node, output}) + said);
  ASSERT_EQ(folder.names().size(), bytes.empty() ? 2U : 3U);
  EXPECT_TRUE(bytes.empty() || folder.read(output) == bytes);
}

INSTANTIATE_TEST_SUITE_P(
    All, SelectionConsoles,
    ::testing::Values(
        console("-k99999 a_d.dat", "-k (keep)", "a_d(k99999).dat",
                "\nKeeping data at time 99999\n" + three_found +
                    "...Found time 99999 in dat file.\n" + FIRST_WRITE_TEXT("a_d(k99999).dat") +
                    end,
                kept("Keep a_d", {{99999, {1, 1}, {3}}})),
        console("-b -k3 a_d.dat", "-k (keep)", "a_d(k3).dat",
                "\nKeeping data at time 3\n" + three_found +
                    "\nERROR - Could not find specified timestep in .dat file.\n"
                    "   \"a_d.dat\", asked for time 3, tolerance 0.0001\n" +
                    end_text,
                ""),
        console("-r1 a_d.dat", "-r (remove)", "a_d(r1).dat",
                "\nRemoving data at time 1\n" + READ_TEXT("0.000") +
                    FIRST_WRITE_TEXT("a_d(r1).dat") + "Skipping time to remove, time found: 1\n" +
                    READ_TEXT("99999.000", true) + WRITE_TEXT("a_d(r1).dat") + end,
                kept("a_d(r1)", {{0, {1, 1}, {1}}, {99999, {1, 1}, {3}}})),
        console("-b -rangeA1.5 -rangeB1.75 a_d.dat", "-range (range)", "a_d(range).dat",
                "\nKeeping data from time 1.5 to time 1.75\n"
                "Skipping time outside range, time found: 0\n"
                "Skipping time outside range, time found: 1\n"
                "Skipping time outside range, time found: 99999\n"
                "WARNING - No output times in the range.\n" +
                    files_closed +
                    "Writing header inforamtion to .dat file: a_d(range).dat\nDone\n" +
                    closing_text,
                kept("Range a_d", {})),
        console("-con a_d.dat b_d.dat", "-con (concatenate)", "a_d(con).dat",
                "\nConcatenating files.\n\nProcessing file: a_d.dat\n" + READ_TEXT("0.000") +
                    FIRST_WRITE_TEXT("a_d(con).dat") + READ_TEXT("1.000") +
                    WRITE_TEXT("a_d(con).dat") +
                    "Skipping times above 99,998, time found: 99999\n"
                    "\nProcessing file: b_d.dat\n"
                    "Skipping time already written, time found: 0\n"
                    "Skipping time already written, time found: 1\n"
                    "Skipping times above 99,998, time found: 99999\n" +
                    end,
                kept("a_d(con)", {{0, {1, 1}, {1}}, {1, {1, 1}, {2}}}))));

TEST(TimesConsole, FromStartToEnd) {
  const Workspace folder;
  folder.write("a_d.dat", short_input);
  SetUpText set_up{"-times (times)", {input_a}, one_node};
  set_up.output_kind = "\nOutput file is a text file\n";
  const std::string times = "          0.000\n          1.000\n      99999.000\n";
  EXPECT_EQ(RUN(folder, WORDS("-times a_d.dat")).output,
            SET_UP(set_up) + "Output Text File: times.txt\n\nTimes in file: a_d.dat\n" + times +
                "Closing .dat file: a_d.dat\nClosing output file.\nDone\n\nFinished.\n"
                "Press Enter to Continue\n");
  EXPECT_EQ(folder.read("times.txt"), times);
}

// Joined files must hold the same kind of data on the same mesh; the earlier result stays.
TEST(Concatenate, RefusesOtherKindsAndCounts) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  folder.write("v_d.dat", vector_maxima);
  folder.write("all.dat", "an earlier result");
  folder.write("cells_d.dat", DAT_FILE({3, 3}, "d", {}));
  folder.write("nodes_d.dat", DAT_FILE({2, 1}, "d", {}));
  MAKE_XMDF(folder, "v.xmdf", {{"r/Temporal/Vector Velocity", {3, 2, true}, {}}});
  const auto before = folder.names();
  const std::string kind = " is not the same vector or scalar format as in primary .dat file.\n";
  const auto other_counts = [](const std::string& name, const std::string& found) {
    return "ERROR - Number nodes and/or cells in " + name +
           " not the same as in primary .dat file.\n   Found " + found +
           ", expected nodes 3, cells 2 as in \"a_d.dat\"\n";
  };
  for (const auto& [inputs, message] : std::vector<std::pair<std::string, std::string>>{
           {"nodes_d.dat v_d.dat", "ERROR - v_d.dat" + kind},
           {"a_d.dat v.xmdf", "ERROR - v.xmdf" + kind},
           {"a_d.dat a_d.dat cells_d.dat", other_counts("cells_d.dat", "nodes 3, cells 3")},
           {"a_d.dat nodes_d.dat", other_counts("nodes_d.dat", "nodes 2, cells 1")}}) {
    const RunResult run = RUN(folder, WORDS("-b -con -typev -out all.dat " + inputs));
    EXPECT_NE(run.output.find(message + "Press Enter to Continue\n"), std::string::npos)
        << run.output;
    EXPECT_EQ(folder.read("all.dat"), "an earlier result");
    EXPECT_EQ(folder.names(), before);
  }
}

// From the operation on.
TEST(XmdfSelections, ConsolesAndWholeOutputs) {
  const Workspace folder;
  write_xmdf(folder);
  const auto expect = [&](const std::string& arguments, const std::string& name,
                          const std::string& said, const std::string& shown) {
    const RunResult run = RUN(folder, WORDS("-b r.xmdf " + arguments));
    const std::string start = "geom2_%\n    Done.\n";
    EXPECT_EQ(run.output.substr(run.output.find(start) + start.size()),
              said + "Closing XMDF File: " + name + "\nDone.\n");
    EXPECT_EQ(XMDF_TEXT(folder.path(name)), shown);
  };
  const std::string opened = "Getting data from: r.xmdf\nGetting data from group: ";
  const std::string last = "Processing final timestep... closing group\nDone\n";
  const auto head = [](const std::string& group, const std::string& in) {
    return group + " GENERIC\n" + group + "/" + in + " GENERIC\n" + group + "/" + in + "/";
  };
  expect("-k99999 -typed", "r(k99999).xmdf",
         "\nKeeping data at time 99999\nSearching XMDF files for specified output time: 99999\n"
         "Searching xmdf file: \"r.xmdf\"\nLooking for data in /Maximums/ folder.\n"
         "Found r/Maximums/Depth\n" +
             opened +
             "r/Maximums/Depth\nOpening Group.\nDone.\nReading scalar data at timestep 1\n" + last +
             "Finished getting data\nCreating Folder: Keep/Maximums\n"
             "Creating scalar dataset: Keep r\nDone.\nDone\nDone.\n" +
             files_closed,
         head("Keep", "Maximums") +
             "Keep r DATASET SCALAR m Hours\n  Times float64 1: 0\n  Values float32 1x2: 9 9\n"
             "  Mins float32 1: 9\n  Maxs float32 1: 9\n  Active uint8 1x1: 1\n");
  expect("-r0.5 -typed", "r(r0.5).xmdf",
         "\nRemoving data at time 0.5\n" + opened +
             "r/Temporal/Depth\nOpening Group.\nDone.\nReading scalar data at timestep 1\n"
             "Creating Folder: Remove/Temporal\n"
             "Creating scalar dataset: r(r0.5)\nDone.\nDone\nDone.\n"
             "Skipping time to remove, time found: 0.5\nReading scalar data at timestep 3\n" +
             last + "Finished getting data\nDone.\n" + files_closed,
         head("Remove", "Temporal") +
             "r(r0.5) DATASET SCALAR m Hours\n  Times float64 2: 0 1\n"
             "  Values float32 2x2: 1 2 5 6\n  Mins float32 2: 1 5\n  Maxs float32 2: 2 6\n"
             "  Active uint8 2x1: 1 1\n");
  // A vector dataset without output times still has its magnitudes beside it.
  expect("-rangeA0.5 -rangeB1.5 -typeV", "r(range).xmdf",
         "\nKeeping data from time 0.5 to time 1.5\n"
         "Skipping time outside range, time found: 0\nSkipping time outside range, time found: 2\n"
         "WARNING - No output times in the range.\n" +
             files_closed +
             "Creating Folder: Range/Temporal\nCreating vector dataset: Vector Velocity\n"
             "Creating scalar dataset: Velocity\nDone.\nDone\n",
         head("Range", "Temporal") +
             "Vector Velocity DATASET VECTOR m Hours\n  Times float64 0:\n"
             "  Values float32 0x2x2:\n"
             "Range/Temporal/Velocity DATASET SCALAR m Hours\n  Times float64 0:\n"
             "  Values float32 0x2:\n");
}

}  // namespace
}  // namespace quillet::testing
