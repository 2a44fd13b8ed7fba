// -k, -r, -rangeA and -rangeB, -con, -times on small files: every byte of what they write and of
// what they say, worked out by hand.
#include "program/file_runs.h"
#include "program/set_up_text.h"
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
const std::string unfound = "ERROR - Could not find specified timestep in .dat file.";

INSTANTIATE_TEST_SUITE_P(
    SelectedTimes, FileRuns,
    ::testing::Values(
        selection("-k1").gives(selected("Keep a_d", {near_one_full})),
        selection("-k1 -dttol0.00001").gives(selected("Keep a_d", {one})),
        selection("-k99999").gives(selected("Keep a_d", {stored})), selection("-k3").says(unfound),
        selection("-k1 -dttol0").says(unfound),
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
        selection("-rangeA-1 -rangeB100000")
            .gives(selected("Range a_d", {half, near_one_full, one, late, stored}))));

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
  expect("-k99999 -typed r.xmdf", "Keep/Maximums/Keep r", {xmdf_stored});
  expect("-r0 -typeV r.xmdf", "Remove/Temporal/out_mag", {{2, {1}, {10, 2}}});
  expect("-rangeA0.5 -rangeB1 -typed r.xmdf", "Range/Temporal/Depth", {xmdf_half, xmdf_one});
  // A type that there is not has no name.
  expect("-rangeA0.5 -rangeB1 -typezzz a_d.dat", "Range/Temporal/out", {same_time});
  expect("-con -typed a_d.dat r.xmdf", "Concatenate/Temporal/out", {before, same_time, xmdf_one});
  expect("-dur3.5 -typed r.xmdf", "Duration/Temporal/dur3.5", {{0, {1}, {0.375F, 0.625F}}});
}

TEST(Times, StandOnTheConsoleAndInATextFile) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  write_xmdf(folder);
  const std::string expected =
      "          0.500\n          1.000\n          1.000\n         27.500\n      99999.000\n";
  const RunResult dat = RUN(folder, WORDS("-times -b a_d.dat"));
  EXPECT_EQ(folder.read("times.txt"), expected);
  EXPECT_NE(
      dat.output.find("Output Text File: times.txt\n\nTimes in file: a_d.dat\n" + expected +
                      "Closing .dat file: a_d.dat\nClosing output file.\nDone\n\nFinished.\n"),
      std::string::npos)
      << dat.output;
  EXPECT_TRUE(dat.has_line("Output file is a text file"));
  const RunResult xmdf = RUN(folder, WORDS("-times -b -typed -out list r.xmdf"));
  const std::string expected_xmdf = "          0.000\n          0.500\n          1.000\n";
  EXPECT_EQ(folder.read("list.txt"), expected_xmdf);
  EXPECT_NE(xmdf.output.find("Times in file: r.xmdf\n" + expected_xmdf), std::string::npos);
}

// Whole consoles.
constexpr DatShape one_node{1, 0};
const std::string short_input =
    DAT_FILE(one_node, "data", {{0, {}, {1}}, {1, {}, {2}}, {99999, {}, {2}}});

const SetUpText::Input input_a{"a_d.dat", "_d", "a.2dm"};
const SetUpText::Input input_b{"b_d.dat", "_d", "b.2dm"};

TEST(SelectionConsoles, FromStartToEnd) {
  const Workspace folder;
  folder.write("a_d.dat", short_input);
  folder.write("b_d.dat", short_input);
  const std::string end = "\nClosing files and exiting\n\n" + std::string(closing_text) + end_text;
  EXPECT_EQ(RUN(folder, WORDS("-k1 a_d.dat")).output,
            SET_UP({"-k (keep)", {input_a}, one_node, "a_d(k1).dat"}) +
                "\nKeeping data at time 1\n" + HEADER_TEXT("a_d.dat", one_node) +
                "Reading data for time 0.000\nDone.\nReading data for time 1.000\nDone.\n"
                "...Found time 1 in dat file.\n" +
                FIRST_WRITE_TEXT("a_d(k1).dat") + end);
  EXPECT_EQ(RUN(folder, WORDS("-con a_d.dat b_d.dat")).output,
            SET_UP({"-con (concatenate)", {input_a, input_b}, one_node, "a_d(con).dat"}) +
                "\nConcatenating files.\n\nProcessing file: a_d.dat\n" + READ_TEXT("0.000") +
                FIRST_WRITE_TEXT("a_d(con).dat") + READ_TEXT("1.000") + WRITE_TEXT("a_d(con).dat") +
                "Skipping times above 99,998, time found: 99999\n"
                "\nProcessing file: b_d.dat\n"
                "Skipping time already written, time found: 0\n"
                "Skipping time already written, time found: 1\n"
                "Skipping times above 99,998, time found: 99999\n" +
                end);
}

}  // namespace
}  // namespace quillet::testing
