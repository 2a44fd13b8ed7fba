// -conv both ways: whole files as h5py or the bytes show them, what is left out and what is
// refused.
#include <gtest/gtest.h>

#include <cmath>

#include "dat_builder.h"
#include "program/set_up_text.h"
#include "program/xmdf_view.h"
#include "program_runner.h"
#include "same_results.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

using Names = std::vector<std::string>;

constexpr DatShape shape{2, 2};
const DatTime first{0.5F, {1, 0}, {1, 2}};
const DatTime second{1, {0, 1}, {4, 3}};
const DatTime stored{99999, {1, 1}, {4, 3}};

std::string depths(const std::string& folder, const std::string& times) {
  return folder + " GENERIC\n" + folder + "/Depth DATASET SCALAR m Hours\n" + times;
}

TEST(DatToXmdf, SortsOutputTimesIntoFolders) {
  const Workspace folder;
  const DatTime low{-99999, {0, 0}, {NAN, -1}};
  const DatTime when{99999.1F, {1, 1}, {8, 9}};
  folder.write("run_d.dat", DAT_FILE(shape, "any", {first, stored, low, second, when}));
  folder.write("run_h.dat", DAT_FILE(shape, "any", {when}));
  const RunResult run = RUN(folder, WORDS("-conv -b run_d.dat run_h.dat"));
  EXPECT_EQ(XMDF_TEXT(folder.path("run_d.xmdf")),
            "run GENERIC\n" +
                depths("run/Maximums",
                       "  Times float64 1: 99999\n  Values float32 1x2: 4 3\n"
                       "  Mins float32 1: 3\n  Maxs float32 1: 4\n  Active uint8 1x2: 1 1\n") +
                depths("run/Minimums",
                       "  Times float64 1: -99999\n  Values float32 1x2: nan -1\n"
                       "  Mins float32 1: -1\n  Maxs float32 1: -1\n  Active uint8 1x2: 0 0\n") +
                depths("run/Temporal",
                       "  Times float64 2: 0.5 1\n  Values float32 2x2: 1 2 4 3\n"
                       "  Mins float32 2: 1 3\n  Maxs float32 2: 2 4\n"
                       "  Active uint8 2x2: 1 0 0 1\n"))
      << run.output;
  EXPECT_EQ(run.count_lines_with("WARNING - Dataset \"any\" holds times of maximums"), 1);
  // Found again as every dataset of times of peaks is: at time 0.
  const RunResult peak =
      RUN(folder, {"-k99999", "-b", "-pathTime of Peak h", "-out", "peak", "run_h.xmdf"});
  EXPECT_NE(XMDF_TEXT(folder.path("peak.xmdf")).find("Values float32 1x2: 8 9\n"),
            std::string::npos)
      << peak.output;
}

// What -max and -min write: the extremes marked in their way, and maps that are no results.
TEST(DatToXmdf, TakesMarkedExtremesForWhatTheyAreAndOfSeveralTheLast) {
  const Workspace folder;
  const DatTime marked{111111, {1, 1}, {4, 3}};
  const DatTime sources{222222, {1, 1}, {1, 2}};
  folder.write("a_d(maxmax).dat", DAT_FILE(shape, "d", {stored, marked, sources}));
  folder.write("b_d(minmin).dat", DAT_FILE(shape, "d", {marked, sources}));
  folder.write("c_d.dat", DAT_FILE(shape, "d", {{-111111, {1, 1}, {4, 3}}, sources}));
  const RunResult run = RUN(folder, WORDS("-conv -b a_d(maxmax).dat b_d(minmin).dat c_d.dat"));
  EXPECT_EQ(run.count_lines_with("Skipping marker time, time found: 222222"), 3);
  const auto expect = [&](const char* file, const std::string& extremes, const char* time) {
    const std::string text = XMDF_TEXT(folder.path(file));
    EXPECT_NE(text.find('/' + extremes + " GENERIC\n"), std::string::npos) << text;
    EXPECT_NE(text.find(std::string("  Times float64 1: ") + time + "\n"), std::string::npos);
    EXPECT_NE(text.find("  Values float32 1x2: 4 3\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("Temporal"), std::string::npos) << text;
  };
  expect("a_d(maxmax).xmdf", "Maximums", "111111");
  expect("b_d(minmin).xmdf", "Minimums", "111111");
  expect("c_d.xmdf", "Minimums", "-111111");
}

// Dots and brackets belong to the model; a name that is a suffix alone is a name.
TEST(DatToXmdf, NamesTheGroupAfterTheModel) {
  const Workspace folder;
  for (const auto& [input, output, path] : std::vector<std::array<std::string, 3>>{
           {"run_v1.2_d.dat", "run_v1.2_d.xmdf", "run_v1.2/Temporal/Depth"},
           {"run_d(range).dat", "run_d(range).xmdf", "run(range)/Temporal/Depth"},
           {"run_v1.2_d(k1.5)(trim0.3).dat", "run_v1.2_d(k1.5)(trim0.3).xmdf",
            "run_v1.2(k1.5)(trim0.3)/Temporal/Depth"},
           {"_d.dat", "_d.xmdf", "_d/Temporal/Depth"},
           {"run_x(1.5).dat", "run_x(1.5).xmdf", "run_x(1.5)/Temporal/run_x(1.5)"}}) {
    folder.write(input, DAT_FILE(shape, "any", {first}));
    const RunResult run = RUN(folder, {"-conv", "-b", input});
    EXPECT_EQ(READ_XMDF(folder, output, path).size(), 1U) << input << run.output;
  }
}

// The mesh tells what the file does not.
TEST(XmdfToDat, TakesTheCellsOfTheMeshWhereTheFileHasNoActivity) {
  const std::string mesh =
      "MESH2D\nND 1 0 0 0\nND 2 1 0 0\nE3T 1 1 2 2 1\nE3T 2 1 2 2 1\nE3T 3 1 2 2 1\n";
  const std::string warning =
      "WARNING - The number of cells is not known, none are written: \"a.xmdf\"";
  for (const auto& [name, text, cells] : std::vector<std::tuple<std::string, std::string, int>>{
           {"a.2dm", mesh, 3}, {"a.2dm", mesh + "ND 3 1 1 0\n", 0}, {"b.2dm", mesh, 0}}) {
    const Workspace folder;
    folder.write(name, text);
    MAKE_XMDF(folder, "a.xmdf", {{"r/Temporal/Depth", {2, 0}, {{0.5F, {}, {1, 2}}}}});
    const RunResult run = RUN(folder, WORDS("-conv -b a.xmdf"));
    std::string expected =
        DAT_FILE({2, cells}, "Depth",
                 {{0.5F, std::vector<int>(static_cast<std::size_t>(cells), 1), {1, 2}}});
    expected[96] = 1;  // statuses are stated, be it none
    EXPECT_TRUE(folder.read("a_d.dat") == expected) << run.output;
    EXPECT_EQ(run.has_line(warning), cells == 0) << run.output;
  }
}

TEST(DatToXmdf, NamesVectorsByTheirTypeAndUnknownsByTheirFile) {
  const Workspace folder;
  folder.write("a_V.dat", DAT_FILE({1, 0, true}, "v", {{2, {}, {3, -4}}}));
  folder.write("b_v.dat", DAT_FILE({1, 0}, "v", {{2, {}, {5}}}));
  folder.write("c_what.dat", DAT_FILE({1, 0}, "v", {{2, {}, {5}}}));
  RUN(folder, WORDS("-conv -b a_V.dat b_v.dat c_what.dat"));
  const std::string five =
      " DATASET SCALAR m Hours\n  Times float64 1: 2\n"
      "  Values float32 1x1: 5\n  Mins float32 1: 5\n  Maxs float32 1: 5\n";
  EXPECT_EQ(XMDF_TEXT(folder.path("a_V.xmdf")),
            "a GENERIC\na/Temporal GENERIC\n"
            "a/Temporal/Vector Velocity DATASET VECTOR m Hours\n  Times float64 1: 2\n"
            "  Values float32 1x1x2: 3 -4\n  Mins float32 1: 5\n  Maxs float32 1: 5\n"
            "a/Temporal/Velocity" +
                five);
  EXPECT_EQ(XMDF_TEXT(folder.path("b_v.xmdf")),
            "b GENERIC\nb/Temporal GENERIC\nb/Temporal/Velocity" + five);
  EXPECT_EQ(XMDF_TEXT(folder.path("c_what.xmdf")),
            "c_what GENERIC\nc_what/Temporal GENERIC\nc_what/Temporal/c_what" + five);
}

TEST(Conversion, ThereAndBackGivesTheSameBytes) {
  const Workspace folder;
  const std::string depth = DAT_FILE(shape, "Depth", {first, second, stored});
  const std::string flow = DAT_FILE(
      {2, 1, true}, "Vector Unit Flow",
      {{0, {0}, {0, 0, 1, -1}}, {-0.0F, {1}, {3, 4, 5e-7F, 0}}, {99999, {1}, {3, 4, 1, -1}}});
  folder.write("r_d.dat", depth);
  folder.write("r_q.dat", flow);
  RUN(folder, WORDS("-conv -b r_d.dat r_q.dat"));
  RUN(folder, WORDS("-conv -b r_d.xmdf r_q.xmdf"));
  EXPECT_TRUE(SAME_RESULTS(folder.read("r_d_d.dat"), depth));
  EXPECT_TRUE(SAME_RESULTS(folder.read("r_q_q.dat"), flow));
  EXPECT_EQ(folder.names(), (Names{"r_d.dat", "r_d.xmdf", "r_d_d.dat", "r_q.dat", "r_q.xmdf",
                                   "r_q_q.dat", "r_q_q_mag.dat"}));
}

void write_many(const Workspace& folder) {
  const DatShape vectors{2, 2, true};
  MAKE_XMDF(folder, "r.xmdf",
            {{"r/Fixed/Bathymetry", shape, {{0, {1, 1}, {1, 2}}}},
             {"r/Maximums/Depth", shape, {{0, {1, 1}, {4, 3}}}},
             {"r/Minimums/Depth", shape, {{-99999, {0, 1}, {0, 0}}}},
             {"r/Temporal/054", shape, {{0, {1, 1}, {1, 2}}}},
             {"r/Temporal/Depth", shape, {first, second}},
             {"r/Temporal/Mass Error %", shape, {{0, {}, {1, 2}}}},
             {"r/Temporal/My Own", shape, {{0, {1, 1}, {1, 2}}}},
             {"r/Temporal/Velocity", shape, {{2, {1, 0}, {5, 0}}}},
             {"r/Temporal/Vector Velocity", vectors, {{2, {1, 0}, {3, 4, 0, 0}}}},
             {"r/Times/Duration Above 0.1m", shape, {{0, {1, 1}, {2, 2}}}}});
}

TEST(XmdfToDat, WritesOneFilePerResultType) {
  const Workspace folder;
  write_many(folder);
  const RunResult run = RUN(folder, WORDS("-conv -b r.xmdf"));
  EXPECT_EQ(folder.names(), (Names{"r.xmdf", "r_ME_.dat", "r_d.dat", "r_v.dat", "r_v_mag.dat"}))
      << run.output;
  EXPECT_TRUE(
      SAME_RESULTS(folder.read("r_d.dat"), DAT_FILE(shape, "Depth", {first, second, stored})));
  // No activity: every cell counts as wet.
  EXPECT_TRUE(SAME_RESULTS(folder.read("r_ME_.dat"),
                           DAT_FILE(shape, "Mass Error %", {{0, {1, 1}, {1, 2}}})));
  EXPECT_TRUE(
      SAME_RESULTS(folder.read("r_v_mag.dat"), DAT_FILE(shape, "Velocity", {{2, {1, 0}, {5, 0}}})));
  EXPECT_TRUE(SAME_RESULTS(folder.read("r_v.dat"),
                           DAT_FILE({2, 2, true}, "Vector Velocity", {{2, {1, 0}, {3, 4, 0, 0}}})));
  for (const std::string name : {"054", "My Own"}) {
    EXPECT_EQ(run.count_lines_with("WARNING - Dataset \"" + name + "\" is of no known type"), 1);
  }
  for (const std::string name : {"Bathymetry", "Depth", "Duration Above 0.1m"}) {
    EXPECT_EQ(run.count_lines_with("WARNING - Dataset \"" + name + "\" in "), 1);
  }
}

// Writers often leave the activity out of stored maxima, which stand first in the list.
TEST(XmdfToDat, TakesTheCellsOfWhicheverDatasetTells) {
  const Workspace folder;
  const DatTime all_wet{99999, {}, {4, 3}};
  MAKE_XMDF(folder, "r.xmdf",
            {{"r/Maximums/Depth", shape, {all_wet}}, {"r/Temporal/Depth", shape, {first}}});
  const RunResult run = RUN(folder, WORDS("-conv -b r.xmdf"));
  EXPECT_TRUE(SAME_RESULTS(folder.read("r_d.dat"), DAT_FILE(shape, "Depth", {first, stored})))
      << run.output;
}

TEST(XmdfToDat, WritesAChosenDatasetAlone) {
  const auto expect = [](const std::string& arguments, const std::string& name,
                         const std::string& bytes) {
    const Workspace folder;
    write_many(folder);
    const RunResult run = RUN(folder, WORDS("-conv -b r.xmdf " + arguments));
    EXPECT_EQ(folder.names(), (Names{"r.xmdf", name})) << run.output;
    EXPECT_TRUE(SAME_RESULTS(folder.read(name), bytes)) << arguments;
  };
  expect("-typeV -out s.dat", "s.dat",
         DAT_FILE({2, 2, true}, "Vector Velocity", {{2, {1, 0}, {3, 4, 0, 0}}}));
  expect("-pathMaximums", "r_Depth.dat", DAT_FILE(shape, "Depth", {stored}));
  expect("-pathMinimums", "r_Depth.dat", DAT_FILE(shape, "Depth", {{111111, {0, 1}, {0, 0}}}));
  expect("-s7", "r_My_Own.dat", DAT_FILE(shape, "My Own", {{0, {1, 1}, {1, 2}}}));
  // The name in a .dat header loses what follows its last point.
  expect("-s9", "r_Duration_Above_0.1m.dat",
         DAT_FILE(shape, "Duration Above 0", {{0, {1, 1}, {2, 2}}}));
}

// Two runs in one file are not one time series; each can be chosen.
TEST(XmdfToDat, DoesNotJoinDatasetsOfOneName) {
  const Workspace folder;
  const DatTime other{0.5F, {1, 1}, {9, 9}};
  MAKE_XMDF(folder, "r.xmdf",
            {{"run1/Temporal/Depth", shape, {other}},
             {"run1/Temporal/Water Level", shape, {second}},
             {"run2/Maximums/Depth", shape, {other}},
             {"run2/Temporal/Depth", shape, {first, second}}});
  const RunResult run = RUN(folder, WORDS("-conv -b r.xmdf"));
  EXPECT_EQ(folder.names(), (Names{"r.xmdf", "r_h.dat"})) << run.output;
  EXPECT_EQ(run.count_lines_with("WARNING - Dataset \"Depth\""), 3);
  RUN(folder, WORDS("-conv -b -pathrun2/Temporal r.xmdf"));
  EXPECT_TRUE(SAME_RESULTS(folder.read("r_Depth.dat"), DAT_FILE(shape, "Depth", {first, second})));
}

TEST(Conversion, RefusalsComeBeforeAnythingIsWritten) {
  const Workspace folder;
  write_many(folder);
  folder.write("a_d.dat", DAT_FILE(shape, "d", {first}));
  folder.write("a_d.xmdf", "the engine's");
  folder.write("r_v.dat", "the engine's");
  folder.write("e_d.dat", DAT_FILE(shape, "d", {}));
  folder.write("g_d.dat", DAT_FILE(shape, "d", {first}));
  const Names before = folder.names();
  const auto expect = [&](const std::string& arguments, const std::string& line) {
    const RunResult run = RUN(folder, WORDS("-conv -b " + arguments));
    EXPECT_NE(run.output.find("\n\nERROR - " + line + "\n\nPress Enter to Close\n"),
              std::string::npos)
        << run.output;
    EXPECT_EQ(folder.names(), before);
    EXPECT_EQ(folder.read("a_d.xmdf") + folder.read("r_v.dat"), "the engine'sthe engine's");
    EXPECT_TRUE(run.ended_well());
  };
  expect("a_d.dat", "Output file already exists: \"a_d.xmdf\"");
  expect("g_d.dat ./g_d.dat", "Two inputs have one output: \"./g_d.xmdf\"");
  expect("r.xmdf", "Output file already exists: \"r_v.dat\"");
  expect("e_d.dat", "Nothing to convert in \"e_d.dat\"");
  expect("r.xmdf -s7 -out a_d.dat -2dm a_d.dat", "Output file is also an input file: \"a_d.dat\"");
}

TEST(Conversion, OutNamesASingleOutput) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE(shape, "d", {first}));
  folder.write("x.dat.xmdf", "an earlier result");
  const RunResult one = RUN(folder, WORDS("-conv -b a_d.dat -out x.dat"));
  EXPECT_EQ(folder.names(), (Names{"a_d.dat", "x.dat.xmdf"})) << one.output;
  EXPECT_NE(folder.read("x.dat.xmdf"), "an earlier result");
  folder.write("b_d.dat", DAT_FILE(shape, "d", {first}));
  const RunResult two = RUN(folder, WORDS("-conv -b a_d.dat b_d.dat -out y"));
  EXPECT_EQ(folder.names(), (Names{"a_d.dat", "a_d.xmdf", "b_d.dat", "b_d.xmdf", "x.dat.xmdf"}));
  EXPECT_NE(two.output.find("WARNING - -out option can only be used with a single output for "
                            "-conv.\nSpecifed output name ignored.\n"),
            std::string::npos);
  EXPECT_EQ(two.count_lines_with("Closing files and exiting"), 1);
}

TEST(Conversion, ConsoleFromDatToXmdf) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE({2, 1}, "data", {{0.5F, {1}, {1, 2}}, {99999, {1}, {1, 2}}}));
  const RunResult run = RUN(folder, WORDS("-conv a_d.dat"));
  EXPECT_TRUE(run.has_line("-conv found, output name based on conversion."));
  EXPECT_EQ(run.output.substr(run.output.find("\nConverting files.")),
            std::string("\nConverting files.\nOutput XMDF File: a_d.xmdf\n"
                        "Creating Folder: a/Temporal\nCreating scalar dataset: Depth\nDone.\nDone\n"
                        "Converting Depth at time 0.5\nDone.\n"
                        "Creating Folder: a/Maximums\nCreating scalar dataset: Depth\nDone.\nDone\n"
                        "Converting Depth at time 99999\nDone.\n"
                        "Closing XMDF File: a_d.xmdf\nDone.\n"
                        "\nClosing files and exiting\n") +
                end_text);
}

// What is left out is said before the first output is opened.
TEST(Conversion, ConsoleFromXmdfToDat) {
  const Workspace folder;
  write_many(folder);
  const RunResult run = RUN(folder, WORDS("-conv -b r.xmdf"));
  const auto written = [](const std::string& file, const std::string& data) {
    return "Output .dat File: " + file + "\n" + data + closing_text;
  };
  const auto first_time = [](const std::string& file, const std::string& name,
                             const std::string& hours) {
    return "Converting " + name + " at time " + hours + "\n" + FIRST_WRITE_TEXT(file);
  };
  EXPECT_EQ(run.output.substr(run.output.find("\nConverting files.")),
            "\nConverting files.\n"
            "WARNING - Dataset \"054\" is of no known type, not converted.\n"
            "WARNING - Dataset \"My Own\" is of no known type, not converted.\n"
            "WARNING - Dataset \"Depth\" in Minimums has no place in a .dat file, not converted.\n"
            "WARNING - Dataset \"Duration Above 0.1m\" in Times has no place in a .dat file, not "
            "converted.\n"
            "WARNING - Dataset \"Bathymetry\" in Fixed has no place in a .dat file, not "
            "converted.\n" +
                written("r_d.dat", first_time("r_d.dat", "Depth", "0.5") +
                                       "Converting Depth at time 1\n" + WRITE_TEXT("r_d.dat") +
                                       "Converting Depth at time 0\n" + WRITE_TEXT("r_d.dat")) +
                written("r_ME_.dat", first_time("r_ME_.dat", "Mass Error %", "0")) +
                written("r_v_mag.dat", first_time("r_v_mag.dat", "Velocity", "2")) +
                written("r_v.dat", first_time("r_v.dat", "Vector Velocity", "2")) +
                "\nClosing files and exiting\n");
}

// The disk becomes full in the second of two outputs: the first is whole.
TEST(Conversion, LeavesWholeOutputsOnAFullDisk) {
  const Workspace folder;
  const std::int32_t nodes = 5000;
  const DatTime time{0, {1}, std::vector<float>(nodes, 1)};
  const DatTime vectors{0, {1}, std::vector<float>(2 * nodes, 1)};
  const std::string flow = "r/Temporal/Vector Unit Flow";
  MAKE_XMDF(folder, "r.xmdf",
            {{"r/Temporal/Depth", {nodes, 1}, {time}}, {flow, {nodes, 1, true}, {vectors}}});
  const RunResult run = RUN(folder, WORDS("-conv -b r.xmdf"), {.largest_file = 30000});
  EXPECT_NE(run.output.find("\n\nERROR - Writing file \"r_q.dat\": File too large\n\nPress"),
            std::string::npos)
      << run.output;
  EXPECT_TRUE(SAME_RESULTS(folder.read("r_d.dat"), DAT_FILE({nodes, 1}, "Depth", {time})));
  EXPECT_EQ(folder.names(), (Names{"r.xmdf", "r_d.dat", "r_q.dat.part"}));
  EXPECT_TRUE(run.ended_well());
}

}  // namespace
}  // namespace quillet::testing
