// -k, -r, -rangeA and -rangeB, -con, -times on small files: every byte of what they write and of
// what they say, worked out by hand.
#include <gtest/gtest.h>

#include "dat_builder.h"
#include "program/set_up_text.h"
#include "program/xmdf_view.h"
#include "program_runner.h"
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

struct Selection {
  std::string arguments;
  std::string name;
  Times kept;
  std::vector<std::string> lines{};
};
class SelectedTimes : public ::testing::TestWithParam<Selection> {};

TEST_P(SelectedTimes, AreWrittenByteByByte) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  const RunResult run = RUN(folder, WORDS("-b -out out.dat a_d.dat " + GetParam().arguments));
  EXPECT_TRUE(folder.read("out.dat") == DAT_FILE(shape, GetParam().name, GetParam().kept))
      << run.output;
  EXPECT_FALSE(folder.has("out.dat.part"));
  for (const std::string& line : GetParam().lines) EXPECT_TRUE(run.has_line(line)) << line;
  EXPECT_TRUE(run.ended_well());
}

INSTANTIATE_TEST_SUITE_P(Keep, SelectedTimes,
                         ::testing::Values(Selection{"-k1", "Keep a_d", {near_one_full}},
                                           Selection{"-k1 -dttol0.00001", "Keep a_d", {one}},
                                           Selection{"-k99999", "Keep a_d", {stored}},
                                           Selection{"-k99999 -t27.5", "Keep a_d", {late}}));

INSTANTIATE_TEST_SUITE_P(
    Remove, SelectedTimes,
    ::testing::Values(Selection{"-r1",
                                "out",
                                {half, late, stored},
                                {"Skipping time to remove, time found: 1.00009",
                                 "Skipping time to remove, time found: 1"}},
                      Selection{"-r0.5", "out", {near_one_full, one, late, stored}},
                      Selection{"-r99999", "out", {half, near_one_full, one, late}},
                      Selection{"-r5",
                                "out",
                                {half, near_one_full, one, late, stored},
                                {"WARNING - Time to remove was not found: 5"}}));

INSTANTIATE_TEST_SUITE_P(
    Range, SelectedTimes,
    ::testing::Values(
        Selection{"-rangeA1 -rangeB27.5", "Range a_d", {near_one_full, one, late}},
        Selection{"-rangeA1.25 -rangeB27.25 -dttol0.25", "Range a_d", {near_one_full, one, late}},
        Selection{"-rangeA1.3 -rangeB27.2 -dttol0.25 -typed",
                  "Depth",
                  {},
                  {"WARNING - No output times in the range."}},
        Selection{
            "-rangeA-1 -rangeB100000", "Range a_d", {half, near_one_full, one, late, stored}}));

class UnfoundTimes : public ::testing::TestWithParam<std::string> {};

TEST_P(UnfoundTimes, EndTheRunWithoutAnOutput) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  const RunResult run = RUN(folder, WORDS("-b a_d.dat " + GetParam()));
  EXPECT_NE(run.output.find("\n\nERROR - Could not find specified timestep in .dat file.\n"
                            "\nPress Enter to Close\n"),
            std::string::npos);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a_d.dat"});
}
INSTANTIATE_TEST_SUITE_P(Keep, UnfoundTimes, ::testing::Values("-k3", "-k1 -dttol0"));

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
  EXPECT_TRUE(folder.read("all.dat") ==
              DAT_FILE(shape, "all", {half, near_one_full, late, {30, {0, 7}, {2, 2, 2}}, last}))
      << run.output;
  for (const char* line : {"Skipping times above 99,998, time found: 99999",
                           "Skipping time already written, time found: 1",
                           "Skipping time already written, time found: 27.5",
                           "Skipping times above 99,998, time found: 99998.01"}) {
    EXPECT_TRUE(run.has_line(line)) << line;
  }
}

TEST(Concatenate, RefusesScalarsWithVectors) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE({1, 1}, "a", {{0, {1}, {1}}}));
  folder.write("a_v.dat", DAT_FILE({1, 1, true}, "a", {{1, {1}, {1, 2}}}));
  const RunResult run = RUN(folder, {"-con", "a_d.dat", "a_v.dat"});
  EXPECT_TRUE(
      run.has_line("ERROR - a_v.dat is not the same vector or scalar format as in primary "
                   ".dat file."));
  EXPECT_EQ(folder.names(), (std::vector<std::string>{"a_d.dat", "a_v.dat"}));
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
  EXPECT_TRUE(folder.read("all.dat") == DAT_FILE({2, 1, true}, "all", {maxima, sources}));
  EXPECT_TRUE(folder.read("map.dat") == DAT_FILE({2, 1}, "map", {sources}));
  EXPECT_TRUE(folder.read("none.dat") == DAT_FILE({2, 1, true}, "Range a_v", {}));
}

// Sources are no magnitudes.
TEST(Vectors, MapsOfSourcesDoNotBecomeMagnitudes) {
  const Workspace folder;
  folder.write("a_v.dat", vector_maxima);
  RUN(folder, WORDS("-b -r5 -out all.xmdf a_v.dat"));
  RUN(folder, WORDS("-b -conv a_v.dat"));
  for (const char* name : {"all.xmdf", "a_v.xmdf"}) {
    EXPECT_EQ(XMDF_TEXT(folder.path(name)).find("222222"), std::string::npos) << name;
  }
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

struct XmdfSelection {
  std::string arguments;
  std::string path;  // in the output; empty: no output
  Times kept;
  std::string line{};
};
class XmdfSelections : public ::testing::TestWithParam<XmdfSelection> {};

TEST_P(XmdfSelections, AreWrittenAsXmdf) {
  const Workspace folder;
  write_xmdf(folder);
  folder.write("a_d.dat", DAT_FILE(small, "depth", {{-1, {0}, {8, 9}}, {0.5F, {1}, {7, 7}}}));
  const auto& [arguments, path, kept, line] = GetParam();
  const RunResult run = RUN(folder, WORDS("-b -out out.xmdf " + arguments));
  EXPECT_EQ(folder.has("out.xmdf"), !path.empty()) << run.output;
  if (!path.empty()) {
    EXPECT_TRUE(DAT_FILE(small, "", READ_XMDF(folder, "out.xmdf", path)) ==
                DAT_FILE(small, "", kept))
        << run.output;
  }
  EXPECT_TRUE(line.empty() || run.has_line(line)) << run.output;
  EXPECT_TRUE(run.ended_well());
}

// Without activity every cell counts as wet; vectors get their magnitudes beside them.
INSTANTIATE_TEST_SUITE_P(
    All, XmdfSelections,
    ::testing::Values(
        XmdfSelection{"-k0.75 -dttol0.25 -typed r.xmdf",
                      "Keep/Temporal/Keep r",
                      {xmdf_half},
                      "Found closest time: 0.5"},
        XmdfSelection{"-k0.75 -dttol0.2 -typed r.xmdf",
                      "",
                      {},
                      "ERROR - Closest time \"0.5\" is not within time search tolerance"},
        XmdfSelection{"-k99999 -typed r.xmdf", "Keep/Maximums/Keep r", {xmdf_stored}},
        XmdfSelection{
            "-k99999 -typeV r.xmdf", "", {}, "ERROR - No stored maximum found in \"r.xmdf\""},
        XmdfSelection{
            "-k-99999 -typed r.xmdf", "", {}, "ERROR - No stored minimum found in \"r.xmdf\""},
        XmdfSelection{"-r0 -typeV r.xmdf", "Remove/Temporal/out", {{2, {1}, {6, 8, 0, -2}}}},
        XmdfSelection{"-r0 -typeV r.xmdf", "Remove/Temporal/out_mag", {{2, {1}, {10, 2}}}},
        XmdfSelection{
            "-rangeA0.5 -rangeB1 -typed r.xmdf", "Range/Temporal/Depth", {xmdf_half, xmdf_one}},
        XmdfSelection{"-con -typed a_d.dat r.xmdf",
                      "Concatenate/Temporal/out",
                      {{-1, {0}, {8, 9}}, {0.5F, {1}, {7, 7}}, xmdf_one},
                      "Skipping time already written, time found: 0.5"}));

TEST(Times, StandOnTheConsoleAndInATextFile) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  write_xmdf(folder);
  const std::string expected =
      "          0.500\n          1.000\n          1.000\n         27.500\n      99999.000\n";
  const RunResult dat = RUN(folder, WORDS("-times -b a_d.dat"));
  EXPECT_EQ(folder.read("times.txt"), expected);
  EXPECT_NE(dat.output.find("Times in file: a_d.dat\n" + expected), std::string::npos);
  const RunResult xmdf = RUN(folder, WORDS("-times -b -typed -out list r.xmdf"));
  const std::string expected_xmdf = "          0.000\n          0.500\n          1.000\n";
  EXPECT_EQ(folder.read("list.txt"), expected_xmdf);
  EXPECT_NE(xmdf.output.find("Times in file: r.xmdf\n" + expected_xmdf), std::string::npos);
}

TEST(Times, OfAModelAreThoseOfItsFirstFile) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  folder.write("b_d.dat", DAT_FILE(shape, "depth", {}));
  folder.write("run.sup", "MESH2D \"a.2dm\"\nDATA \"a_d.dat\"\nDATA \"b_d.dat\"\n");
  const RunResult run = RUN(folder, WORDS("-times -b run.sup"));
  EXPECT_TRUE(run.has_line("WARNING - Only one file for -times option")) << run.output;
  EXPECT_EQ(folder.read("times.txt").size(), 5U * 16U);
}

// Whole consoles.
constexpr DatShape one_node{1, 0};
const std::string short_input =
    DAT_FILE(one_node, "data", {{0, {}, {1}}, {1, {}, {2}}, {99999, {}, {2}}});

struct Console {
  std::string arguments;
  SetUpText set_up;
  std::string operation;  // what the operation says up to its end
};
class SelectionConsoles : public ::testing::TestWithParam<Console> {};

TEST_P(SelectionConsoles, FromStartToEnd) {
  const Workspace folder;
  folder.write("a_d.dat", short_input);
  folder.write("b_d.dat", short_input);
  const auto& [arguments, set_up, operation] = GetParam();
  EXPECT_EQ(
      RUN(folder, WORDS(arguments)).output,
      SET_UP(set_up) + operation + "\nClosing files and exiting\n\n" + closing_text + end_text);
}

const SetUpText::Input input_a{"a_d.dat", "_d", "a.2dm"};
const SetUpText::Input input_b{"b_d.dat", "_d", "b.2dm"};

INSTANTIATE_TEST_SUITE_P(
    All, SelectionConsoles,
    ::testing::Values(
        Console{"-k1 a_d.dat",
                {"-k (keep)", {input_a}, one_node, "a_d(k1).dat"},
                "\nKeeping data at time 1\n" + HEADER_TEXT("a_d.dat", one_node) +
                    "Reading data for time 0.000\nDone.\nReading data for time 1.000\nDone.\n"
                    "...Found time 1 in dat file.\n" +
                    FIRST_WRITE_TEXT("a_d(k1).dat")},
        Console{"-r1 a_d.dat",
                {"-r (remove)", {input_a}, one_node, "a_d(r1).dat"},
                "\nRemoving data at time 1\n" + READ_TEXT("0.000") +
                    FIRST_WRITE_TEXT("a_d(r1).dat") + "Skipping time to remove, time found: 1\n" +
                    READ_TEXT("99999.000", true) + WRITE_TEXT("a_d(r1).dat")},
        Console{"-rangeA0.5 -rangeB5 a_d.dat",
                {"-range (range)", {input_a}, one_node, "a_d(range).dat"},
                "\nKeeping data from time 0.5 to time 5\n"
                "Skipping time outside range, time found: 0\n" +
                    READ_TEXT("1.000") + FIRST_WRITE_TEXT("a_d(range).dat") +
                    "Skipping time outside range, time found: 99999\n"},
        Console{"-con a_d.dat b_d.dat",
                {"-con (concatenate)", {input_a, input_b}, one_node, "a_d(con).dat"},
                "\nConcatenating files.\n\nProcessing file: a_d.dat\n" + READ_TEXT("0.000") +
                    FIRST_WRITE_TEXT("a_d(con).dat") + READ_TEXT("1.000") +
                    WRITE_TEXT("a_d(con).dat") +
                    "Skipping times above 99,998, time found: 99999\n"
                    "\nProcessing file: b_d.dat\n"
                    "Skipping time already written, time found: 0\n"
                    "Skipping time already written, time found: 1\n"
                    "Skipping times above 99,998, time found: 99999\n"}));

TEST(Times, ConsoleFromStartToEnd) {
  const Workspace folder;
  folder.write("a_d.dat", short_input);
  std::string expected = SET_UP({"-times (times)", {input_a}, one_node});
  const std::string dat_output = "\nOnly DAT inputs.\n\nUsing DAT for output type\n";
  expected.replace(expected.find(dat_output), dat_output.size(), "\nOutput file is a text file\n");
  EXPECT_EQ(RUN(folder, WORDS("-times -b a_d.dat")).output,
            expected + "Output Text File: times.txt\n\nTimes in file: a_d.dat\n" +
                "          0.000\n          1.000\n      99999.000\n" +
                "Closing .dat file: a_d.dat\nClosing output file.\nDone\n\nFinished.\n");
}

}  // namespace
}  // namespace quillet::testing
