// Whole console texts and reports of runs on XMDF files, and what the wet/dry test says and does.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "build_paths.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

using Times = std::vector<DatTime>;

constexpr DatShape shape{3, 1, false};

XmdfData depth(const std::string& path, const Times& times) {
  return {path, shape, times};
}

const XmdfData velocity{"run1/Temporal/Vector Velocity",
                        {3, 1, true},
                        {{0, {1}, {0, 1, 0, 1, 0, 1}}, {0.25F, {1}, {0, 1, 0, 1, 0, 1}}}};

TEST(XmdfConsole, MaximumOfTwoFilesFromStartToEnd) {
  std::ifstream stream(tests_folder + "/program/expected/max_xmdf.txt");
  const std::string expected{std::istreambuf_iterator<char>(stream), {}};
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf",
            {depth("run1/Maximums/Depth", {{99999, {1}, {7, 8, 9}}}),
             depth("run1/Temporal/Depth", {{0, {1}, {1, 2, 3}}}), velocity});
  MAKE_XMDF(folder, "b.xmdf", {depth("run2/Temporal/Depth", {{0, {1}, {8, 8, 8}}})});
  const RunResult run = RUN(folder, WORDS("-max -b -typed a.xmdf b.xmdf -out r.dat -dttol0.01"));
  EXPECT_EQ(run.output, expected);
  EXPECT_TRUE(run.ended_well());
}

// The report of -xnfo.
const std::string report_a =
    "a.xmdf\n"
    "Vector Datasets\n"
    "Number Datasets:          1\n"
    "run1/Temporal/Vector Velocity\n"
    "Num Times         2\n"
    "          0.000\n"
    "          0.250\n"
    "Scalar Datasets\n"
    "Number Datasets:          2\n"
    "run1/Maximums/Depth\n"
    "Num Times         1\n"
    "      99999.000\n"
    "run1/Temporal/Depth\n"
    "Num Times         2\n"
    "         -1.500\n"
    "      12345.679\n";
const std::string report_b =
    "in/b.xmdf\n"
    "Scalar Datasets\n"
    "Number Datasets:          1\n"
    "Depth\n"
    "Num Times         0\n";

class XmdfReports : public ::testing::Test {
 protected:
  XmdfReports() {
    std::filesystem::create_directories(folder.path("in"));
    MAKE_XMDF(
        folder, "a.xmdf",
        {depth("run1/Maximums/Depth", {{99999, {1}, {7, 8, 9}}}),
         depth("run1/Temporal/Depth", {{-1.5F, {1}, {1, 2, 3}}, {12345.6789F, {1}, {1, 1, 1}}}),
         velocity});
    MAKE_XMDF(folder, "in/b.xmdf", {depth("Depth", {})});
  }

  Workspace folder;
};

TEST_F(XmdfReports, StandBesideTheirFiles) {
  const RunResult run = RUN(folder, WORDS("-b -xnfo a.xmdf in/b.xmdf"));
  EXPECT_EQ(folder.read("a.xmdf_xmdf_info.txt"), report_a);
  EXPECT_EQ(folder.read("in/b.xmdf_xmdf_info.txt"), report_b);
  EXPECT_NE(run.output.find("\nExtracting information from .xmdf files.\n"
                            "Getting dataset names from XMDF file \"a.xmdf\"\n"
                            "Scalar datasets available:\n"
                            "    1 run1/Maximums/Depth\n"
                            "    2 run1/Temporal/Depth\n"
                            "Vector datasets available:\n"
                            "    1 run1/Temporal/Vector Velocity\n"
                            "Getting dataset names from XMDF file \"in/b.xmdf\"\n"
                            "Scalar datasets available:\n"
                            "    1 Depth\n"
                            "Output Text File: a.xmdf_xmdf_info.txt\n"
                            "Extracting number of outputs for temporal data in \"a.xmdf\"\n"
                            "Closing output file.\nDone\n"
                            "Output Text File: in/b.xmdf_xmdf_info.txt\n"
                            "Extracting number of outputs for temporal data in \"in/b.xmdf\"\n"
                            "Closing output file.\nDone\n"
                            "\nFinished.\n"),
            std::string::npos)
      << run.output;
  EXPECT_TRUE(run.ended_well());
}

// The report goes through the same lines as every operation, whatever becomes of them.
TEST_F(XmdfReports, SayWhatTheInputsAreFirst) {
  const RunResult run = RUN(folder, WORDS("-b -xnfo a.xmdf in/b.xmdf -typed"));
  EXPECT_NE(run.output.find("\nSMS data type identified as: \"_d\"\n2dm filename: \"a.2dm\"\n"
                            "\nSMS data type identified as: \"_d\"\n2dm filename: \"in/b.2dm\"\n"
                            "\nAllocating RAM for a mesh of 3 nodes and 1 cells...\n"
                            "\nAllocation nd1\n    Done.\n"),
            std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find(
                "\nAllocation geom2_%\n    Done.\nExtracting information from .xmdf files.\n"),
            std::string::npos)
      << run.output;
  MAKE_XMDF(folder, "none.xmdf", {});
  EXPECT_TRUE(RUN(folder, WORDS("-b -xnfo none.xmdf"))
                  .has_line("Allocating RAM for a mesh of 0 nodes and 0 cells..."));
}

TEST_F(XmdfReports, ShowNoControlCharacters) {
  MAKE_XMDF(folder, "c.xmdf", {depth("r/Temporal/a\x1b[2J\nb", {{7, {}, {1, 2, 3}}})});
  RUN(folder, WORDS("-b -xnfo c.xmdf"));
  EXPECT_EQ(folder.read("c.xmdf_xmdf_info.txt"),
            "c.xmdf\nScalar Datasets\nNumber Datasets:          1\nr/Temporal/a?[2J?b\n"
            "Num Times         1\n          7.000\n");
}

TEST_F(XmdfReports, OfOneFileCanBeNamed) {
  RUN(folder, WORDS("-b -xnfo a.xmdf -out report.txt"));
  EXPECT_EQ(folder.read("report.txt"), report_a);
  const RunResult run = RUN(folder, WORDS("-b -xnfo a.xmdf in/b.xmdf -out both.txt"));
  EXPECT_NE(run.output.find("\nExtracting information from .xmdf files.\n"
                            "WARNING - -out option can only be used with a single input file for "
                            "-xnfo.\nSpecifed output name ignored.\n"),
            std::string::npos);
  EXPECT_FALSE(folder.has("both.txt"));
}

TEST_F(XmdfReports, HoldTheFirst1000TimesOfADataset) {
  std::string expected =
      "long.xmdf\nScalar Datasets\nNumber Datasets:          2\nA\nNum Times      1001\n";
  Times times;
  for (int hours = 0; hours <= 1000; ++hours) {
    times.push_back({static_cast<float>(hours), {}, {1, 2, 3}});
    const std::string digits = std::to_string(hours);
    if (hours < 1000) expected += std::string(11 - digits.size(), ' ') + digits + ".000\n";
  }
  MAKE_XMDF(folder, "long.xmdf", {depth("A", times), depth("B", {{7, {}, {1, 2, 3}}})});
  const RunResult run = RUN(folder, WORDS("-b -xnfo long.xmdf"));
  EXPECT_EQ(folder.read("long.xmdf_xmdf_info.txt"),
            expected + "B\nNum Times         1\n          7.000\n");
  EXPECT_EQ(run.count_lines_with("ERROR - Maximum of 1000 output times for xnfo option."), 1);
  EXPECT_TRUE(run.has_line("Finished."));
}

TEST_F(XmdfReports, AreOfXmdfFilesOnly) {
  folder.write("a_d.dat", DAT_FILE(shape, "d", {}));
  const auto before = folder.names();
  const RunResult run = RUN(folder, WORDS("-b -xnfo a.xmdf a_d.dat"));
  EXPECT_NE(
      run.output.find("\nExtracting information from .xmdf files.\n\nERROR - All files must be "
                      ".xmdf files for -xnfo option.\n\nPress Enter to Close\n"),
      std::string::npos)
      << run.output;
  EXPECT_EQ(folder.names(), before);
}

// A difference of depths, wet and dry told by the water levels in the same files. Bed 10. Nodes:
// wet in both runs, in the first only, in the second only.
class XmdfWetDry : public ::testing::Test {
 protected:
  XmdfWetDry() {
    const std::string mesh = "MESH2D\nND 1 0 0 10\nND 2 1 0 10\nND 3 1 1 10\nE3T 1 1 2 3 1\n";
    folder.write("a.2dm", mesh);
    folder.write("b.2dm", mesh);
    make("a.xmdf", levels_a);
    make("b.xmdf", levels_b);
  }

  void make(const std::string& name, const std::vector<float>& levels, float hours = 0.5F) const {
    MAKE_XMDF(folder, name,
              {depth("run/Temporal/Depth", {{hours, {name == "a.xmdf"}, {3, 2, 1}}}),
               depth("run/Maximums/Water Level", {{99999, {1}, levels}}),
               depth("run/Temporal/Water Level", {{0, {1}, {0, 0, 0}}, {0.5F, {1}, levels}})});
  }

  void expect_difference(const DatTime& expected, const std::string& in = "Temporal") const {
    const Times written = READ_XMDF(folder, "out.xmdf", "Difference/" + in + "/diff_a - b");
    EXPECT_TRUE(DAT_FILE(shape, "", written) == DAT_FILE(shape, "", {expected}));
  }

  RunResult run_difference(const std::string& more) const {
    return RUN(folder, WORDS("-b -dif -typed a.xmdf b.xmdf -out out.xmdf " + more));
  }

  const std::vector<float> levels_a{12, 12, 10};
  const std::vector<float> levels_b{11, 10, 12};
  Workspace folder;
};

std::string search_text(const std::string& name) {
  return "Searching for water level datasets in " + name +
         "\nFound: \"run/Maximums/Water Level\"\nFound: \"run/Temporal/Water Level\"\n";
}

std::string reading_text(const std::string& name) {
  return "Getting data from: " + name +
         "\nGetting data from group: run/Temporal/Depth\nOpening Group.\nDone.\n"
         "Reading scalar data at timestep 1\nProcessing final timestep... closing group\nDone\n"
         "Finished getting data\nUsing /Temporal/ folder.\nFound closest time: 0.5\n"
         "Getting data from: " +
         name +
         "\nGetting data from group: run/Temporal/Water Level\nOpening Group.\n"
         "Reading scalar data at timestep 2\nProcessing final timestep... closing group\n"
         "Finished getting water level data\n";
}

TEST_F(XmdfWetDry, IsToldByTheWaterLevelsOfTheSameFile) {
  const RunResult run = run_difference("");
  expect_difference({0.5F, {1}, {0, 99, -99}});
  const std::string expected =
      "Allocating secondary arrays for results storage.\nDone.\n"
      "...need to also read .2dm files\n...reading .2dm file\n...reading .2dm file\n"
      "Finished reading .2dm files.\n...need to read water level data.\n"
      "Allocating water level arrays.\n...need to also read first _h.dat file\n" +
      search_text("a.xmdf") + "...need to also read second _h.dat file\n" + search_text("b.xmdf") +
      reading_text("a.xmdf") + reading_text("b.xmdf") +
      "Processing difference results.\nCreating Folder: Difference/Temporal\n"
      "Creating scalar dataset: diff_a - b\nDone.\nDone\nDone.\n"
      "Closing files and exiting\nClosing XMDF File: out.xmdf\nDone.\n";
  ASSERT_GT(run.output.size(), expected.size());
  EXPECT_EQ(run.output.substr(run.output.size() - expected.size()), expected);
}

// The data are taken at exactly 99999, the levels within the tolerance of it.
TEST_F(XmdfWetDry, TakesMaximumLevelsWithinTheTolerance) {
  constexpr float hours = 99999.0078125F;
  make("a.xmdf", levels_a, hours);
  make("b.xmdf", levels_b, hours);
  const RunResult run = run_difference("-t99999.008 -dttol0.01");
  EXPECT_EQ(run.count_lines_with("Using /Maximums/ folder."), 2);
  expect_difference({hours, {1}, {0, 99, -99}}, "Maximums");
}

TEST_F(XmdfWetDry, HasNoMinimumsOrTimes) {
  MAKE_XMDF(folder, "a.xmdf",
            {depth("run/Minimums/Depth", {{-99999, {1}, {1, 2, 3}}}),
             depth("run/Temporal/Depth", {{99999.109375F, {1}, {1, 2, 3}}}),
             depth("run/Temporal/Water Level", {{0, {1}, {1, 2, 3}}})});
  std::filesystem::copy_file(folder.path("a.xmdf"), folder.path("c.xmdf"));
  RunResult run = RUN(folder, WORDS("-b -dif -typed a.xmdf c.xmdf -t-99999 -2dm a.2dm"));
  EXPECT_TRUE(run.has_line("ERROR - Minimums data not supported for difference."));
  run = RUN(folder, WORDS("-b -dif -typed a.xmdf c.xmdf -t99999.109375 -dttol0.05 -2dm a.2dm"));
  EXPECT_TRUE(run.has_line("ERROR - Times data not supported for difference."));
  EXPECT_TRUE(run.has_line("Warning - No maximum water level dataset found for file: a.xmdf"));
}

TEST_F(XmdfWetDry, NeedsLevelsAtTheTimesOfTheData) {
  make("a.xmdf", levels_a, 0.75F);
  const RunResult run = run_difference("");
  EXPECT_NE(run.output.find(
                "Using /Temporal/ folder.\n\nERROR - Closest time \"0.5\" is not within "
                "time search tolerance\n   \"a.xmdf\", asked for time 0.75, tolerance 0.0001\n"
                "\nPress Enter to Close\n"),
            std::string::npos)
      << run.output;
  EXPECT_FALSE(folder.has("out.xmdf"));
}

// Selected by its place or path it is a water level as well as by its type.
TEST_F(XmdfWetDry, KnowsWaterLevelsHoweverTheyAreSelected) {
  for (const std::string how : {"-pathTemporal/Water", "-s3"}) {
    const RunResult run = RUN(folder, WORDS("-b -dif a.xmdf b.xmdf -out out.xmdf " + how));
    EXPECT_EQ(run.count_lines_with("...need to read water level data."), 0) << run.output;
    const Times written = READ_XMDF(folder, "out.xmdf", "Difference/Temporal/diff_a - b");
    EXPECT_TRUE(DAT_FILE(shape, "", written) ==
                DAT_FILE(shape, "", {{0, {1}, {0, 0, 0}}, {0.5F, {1}, {1, 99, -99}}}));
  }
}

TEST_F(XmdfWetDry, TakesLevelsWithoutActivity) {
  MAKE_XMDF(folder, "b.xmdf",
            {depth("run/Temporal/Depth", {{0.5F, {0}, {3, 2, 1}}}),
             depth("run/Temporal/Water Level", {{0.5F, {}, levels_b}})});
  run_difference("");
  expect_difference({0.5F, {1}, {0, 99, -99}});
}

TEST_F(XmdfWetDry, NeedsLevels) {
  MAKE_XMDF(folder, "b.xmdf", {depth("run/Temporal/Depth", {{0.5F, {0}, {3, 1, 1}}})});
  const RunResult run = run_difference("");
  EXPECT_NE(run.output.find(
                "Searching for water level datasets in b.xmdf\n"
                "Warning - No maximum water level dataset found for file: b.xmdf\n"
                "Warning - No temporal water level dataset found for file: b.xmdf\n"
                "\nERROR - Required water level data could not be found in b.xmdf\n"
                "To supress this, specify the input flag: \"-nowetdry\"\n\nPress Enter to Close\n"),
            std::string::npos)
      << run.output;
  run_difference("-nowetdry");
  expect_difference({0.5F, {0}, {0, 1, 0}});
}

}  // namespace
}  // namespace quillet::testing
