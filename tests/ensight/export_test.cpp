// -ensight as the user runs it: every byte of the case file, the variable files and the console.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string_view>

#include "dat_builder.h"
#include "ensight/ensight_meshes.h"
#include "program_runner.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

namespace fs = std::filesystem;

constexpr DatShape shape{6, 3};
const std::vector<int> all_wet{1, 1, 1};
const std::vector<float> ones(6, 1);

class EnsightExport : public ::testing::Test {
 protected:
  EnsightExport() { folder.write("m.2dm", test::standard_mesh()); }

  // To out.case, unless told otherwise; from its own first line on.
  std::string exported(const std::string& inputs, const RunSettings& settings = {}) const {
    const RunResult run = RUN(folder, WORDS("-b -ensight -out out -2dm m.2dm " + inputs), settings);
    EXPECT_TRUE(run.ended_well());
    return run.output.substr(std::min(run.output.size(), run.output.find("Converting ")));
  }
  void write(const std::string& file, const std::string& name, const std::vector<DatTime>& times,
             bool is_vector = false) const {
    folder.write(file, DAT_FILE({shape.nodes, shape.cells, is_vector}, name, times));
  }

  Workspace folder;
};

int count_of(const std::string& text, const std::string& part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST_F(EnsightExport, ConsoleCaseAndVariableFiles) {
  const std::vector<float> levels{1.5F, 2, 3, 4, 5, 1234.5F};
  write("run_h.dat", "Water Level",
        {{0, {1, 0, 0}, levels},
         {25.5078125F, {-1, 0, 1}, levels},
         {99999, all_wet, levels},
         {99999.1F, all_wet, levels}});
  const std::string console = exported("run_h.dat");
  const std::string start =
      "Converting .dat file(s) to ensight text format.\n"
      "Number of .dat files: 1\nNeed to read 2dm file.\n"
      "Scanning geometry...\n";
  EXPECT_EQ(console.substr(0, start.size()), start);
  const auto geometry = console.find(
      "Finished scanning geometry.\nCreating Ensight Gold Geometry "
      "File: out_text.geo\n");
  const auto binary = console.find("Creating Ensight Gold Geometry File (Binary): ");
  const auto rest = console.find("Processing File: ");
  EXPECT_TRUE(geometry < binary && binary < rest);
  EXPECT_EQ(console.substr(rest),
            "Processing File: run_h.dat\n"
            "Processing all scalar datasets, total number: 3\n"
            "Processing scalar datasets number 1\n"
            "Datasets Name: Water Level\n"
            "Output dataset name Water_Level\n"
            "Opening outfile: out_Water_Level.0001\nClosing outfile: out_Water_Level.0001\n"
            "Opening outfile: out_Water_Level.0002\nClosing outfile: out_Water_Level.0002\n"
            "Finished Processing Dataset.\n"
            "Processing scalar datasets number 2\n"
            "Datasets Name: Water Level\n"
            "Output dataset name Max\n"
            "Opening outfile: outMax.0001\nClosing outfile: outMax.0001\n"
            "Finished Processing Dataset.\n"
            "Processing scalar datasets number 3\n"
            "Datasets Name: Time of Peak h\n"
            "Output dataset name _tHMax\n"
            "Opening outfile: out_tHMax.0001\nClosing outfile: out_tHMax.0001\n"
            "Finished Processing Dataset.\n"
            "Writing x and y references to casefile.\n"
            "Writing times to casefile.\n"
            "Finished.\n");
  // 25.5078125 h are 1 day, 1 hour, 30 minutes and 28.125 seconds.
  EXPECT_EQ(folder.read("out.case"),
            "FORMAT\n"
            "type: ensight gold\n"
            "GEOMETRY\n"
            "model: out_text.geo\n"
            "VARIABLE\n"
            "scalar per node: 1 Water_Level out_Water_Level.****\n"
            "scalar per node: Max outMax.0001\n"
            "scalar per node: _tHMax out_tHMax.0001\n"
            "constant per case:         1 day 0 1\n"
            "constant per case:         1 hrs 0 1\n"
            "constant per case:         1 min 0 30\n"
            "constant per case:         1 sec 0 28.125\n"
            "constant per case:         Xref  1000.00000\n"
            "constant per case:         Yref  2000.00000\n"
            "TIME\n"
            "time set:               1\n"
            "number of steps:          2\n"
            "filename start number:  1\n"
            "filename increment:     1\n"
            "time values:\n"
            "0\n"
            "25.507812\n");
  const std::string head = "Water Level\npart\n         1\ncoordinates\n";
  EXPECT_EQ(folder.read("out_Water_Level.0001"), head +
                                                     " 0.15000E+01\n 0.00000E+00\n 0.30000E+01\n"
                                                     " 0.40000E+01\n 0.00000E+00\n 0.00000E+00\n");
  // Only a status of 1 is wet: the corners of the quadrilateral are.
  EXPECT_EQ(folder.read("out_Water_Level.0002"), head +
                                                     " 0.00000E+00\n 0.20000E+01\n 0.30000E+01\n"
                                                     " 0.00000E+00\n 0.50000E+01\n 0.12345E+04\n");
  EXPECT_EQ(folder.read("out_tHMax.0001").find("Time of Peak h\npart\n"), 0);
  EXPECT_EQ(folder.names(),
            (std::vector<std::string>{"m.2dm", "out.case", "outMax.0001", "out_Water_Level.0001",
                                      "out_Water_Level.0002", "out_binary.geo",
                                      "out_binary.geo.log", "out_tHMax.0001", "out_text.geo",
                                      "out_text.geo.log", "run_h.dat"}));
}

TEST_F(EnsightExport, AgainGivesTheSameBytesNamedAfterTheInput) {
  write("m_h.dat", "h", {{0, all_wet, ones}});
  RUN(folder, {"-b", "-ensight", "m_h.dat"});
  const std::string first = folder.read("m_h.case") + folder.read("m_h_text.geo");
  folder.write("m_h_text.geo", std::string(100000, 'x'));
  const auto lines = RUN(folder, {"-ensight", "m_h.dat"}).lines();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
            (std::vector<std::string>{"Finished.", "", "Press Enter to Close"}));
  EXPECT_EQ(folder.read("m_h.case") + folder.read("m_h_text.geo"), first);
}

// The first series gives the output times. Another is written where it has them all, in their
// order; one that lacks a time would leave the case file pointing to a file that is not there.
TEST_F(EnsightExport, OtherSeriesAreNumberedByTheRunsTimesOrPassedOver) {
  const std::vector<float> threes(6, 3);
  write("a_h.dat", "h", {{1, all_wet, ones}, {2, all_wet, ones}});
  write("b_h.dat", "h",
        {{0.5F, all_wet, ones},
         {1.00005F, all_wet, ones},
         {1.5F, all_wet, ones},
         {2, all_wet, threes}});
  write("c_h.dat", "h", {{1, all_wet, ones}});
  write("d_q.dat", "q", {{99999.1F, all_wet, ones}});
  const std::string console = exported("a_h.dat b_h.dat c_h.dat d_q.dat");
  const std::string text = folder.read("out.case");
  EXPECT_NE(text.find("\nscalar per node: 1 h out_a_h_h.****\n"
                      "scalar per node: 1 h_2 out_b_h_h.****\nconstant"),
            std::string::npos)
      << text;
  EXPECT_NE(folder.read("out_b_h_h.0002").find("0.30000E+01"), std::string::npos);
  EXPECT_FALSE(folder.has("out_b_h_h.0003") || folder.has("out_c_h_h.0001"));
  EXPECT_EQ(count_of(console, "WARNING - Unexpected time, skip ensight write.\n"), 4);
}

TEST_F(EnsightExport, ConstantsStandOnALineUpTo18OutputTimesAndThenInFiles) {
  // The second is less than half a millisecond below an hour.
  std::vector<DatTime> times{{-0.5F, all_wet, ones}, {0.99999994F, all_wet, ones}};
  for (float hours = 1.5F; times.size() < 18; ++hours) times.push_back({hours, all_wet, ones});
  write("a_h.dat", "h", times);
  exported("a_h.dat");
  EXPECT_NE(
      folder.read("out.case")
          .find("constant per case:         1 day -1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n"
                "constant per case:         1 hrs 23 1 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n"
                "constant per case:         1 min 30 0 30 30 30"),
      std::string::npos);
  EXPECT_FALSE(folder.has("out_hrs.const"));

  times.push_back({48.265625F, all_wet, ones});
  write("a_h.dat", "h", times);
  exported("a_h.dat");
  EXPECT_NE(folder.read("out.case")
                .find("constant per case file: 1 day out_day.const\n"
                      "constant per case file: 1 hrs out_hrs.const\n"
                      "constant per case file: 1 min out_min.const\n"
                      "constant per case file: 1 sec out_sec.const\n"
                      "constant per case:         Xref"),
            std::string::npos);
  EXPECT_EQ(folder.read("out_hrs.const"),
            "23\n1\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n13\n14\n15\n16\n0\n");
  EXPECT_EQ(folder.read("out_sec.const").substr(34), "0\n56.25\n");
}

TEST_F(EnsightExport, OutputTimesArePlainDecimalsAndWarnWhereTheyDoNotAscend) {
  const auto times_of = [&](const std::vector<float>& hours, bool warns) {
    std::vector<DatTime> times;
    for (const float time : hours) times.push_back({time, all_wet, ones});
    write("a_h.dat", "h", times);
    const std::string console = exported("a_h.dat");
    EXPECT_EQ(count_of(console,
                       "Writing times to casefile.\nWARNING - Output times do not ascend, "
                       "viewers show a part of them.\n"),
              warns ? 1 : 0);
    const std::string text = folder.read("out.case");
    return text.substr(text.find("time values:\n") + 13);
  };
  EXPECT_EQ(times_of({-1, 0.1F, 100.00278F, 99990.03F}, false), "-1\n0.1\n100.00278\n99990.03\n");
  EXPECT_EQ(times_of({1e-7F, 1, 1}, true), "0.0000001\n1\n1\n");
  EXPECT_EQ(times_of({1, 3, 2}, true), "1\n3\n2\n");
  const float no_number = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(times_of({1, no_number, 1, 3}, true), "1\n1\n3\n");
  EXPECT_TRUE(folder.has("out_h.0003"));
  EXPECT_FALSE(folder.has("out_h.0004"));
}

TEST_F(EnsightExport, TimesOfXmdfFilesHave64Bits) {
  MAKE_XMDF(folder, "a.xmdf",
            {{"a/Temporal/d", shape, {{0, all_wet, ones}, {0.1F, all_wet, ones}}}});
  exported("a.xmdf");
  EXPECT_NE(folder.read("out.case").find("time values:\n0\n0.10000000149011612\n"),
            std::string::npos);
}

// Names are distinct, whatever the case of their letters, and begin with a letter.
TEST_F(EnsightExport, NamesHoldLettersDigitsUnderscoresAndPointsAlone) {
  write("p p.dat", "1(b)[c]-d+e/f\xC3\xA4 .g", {{0, all_wet, ones}});
  write("q.dat", "#\t1 a", {{99999, all_wet, ones}});
  write("r.dat", "__1 A", {{99999, all_wet, ones}});
  fs::create_directory(folder.path("new (1)"));
  RUN(folder, {"-b", "-ensight", "-2dm", "m.2dm", "-out", "new (1)/x-(\xC3\xA4)*.dat", "p p.dat",
               "q.dat", "r.dat"});
  const std::string text = folder.read("new (1)/x-_C3A4__.case");
  EXPECT_NE(text.find("model: x-_C3A4___text.geo\nVARIABLE\n"
                      "scalar per node: 1 d1_b__c__d_e_f___.g "
                      "x-_C3A4___p_p_1_b__c_-d_e_fC3A4_.g.****\n"
                      "scalar per node: Max___1_a x-_C3A4___qMax.0001\n"
                      "scalar per node: Max___1_A_2 x-_C3A4___rMax.0001\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(folder.read("new (1)/x-_C3A4___qMax.0001").find("__1 a\npart\n"), 0);
}

TEST_F(EnsightExport, NoLineIsLongerThanReadersTake) {
  const std::string name(120, 'n');
  std::vector<XmdfData> datasets;
  for (const char* last : {"a", "b"}) {
    datasets.push_back({"a/Temporal/" + name + last, shape, {{0, all_wet, ones}}});
  }
  MAKE_XMDF(folder, "a.xmdf", datasets);
  const std::string base(210, 'b');
  RUN(folder, {"-b", "-ensight", "-2dm", "m.2dm", "-out", base, "a.xmdf"});
  const std::string text = folder.read(std::string(200, 'b') + ".case");
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) EXPECT_LE(line.size(), 255U) << line;
  const std::string cut_name(79, 'n');
  const std::string cut_file = std::string(148, 'b');
  EXPECT_NE(text.find("scalar per node: 1 " + cut_name + ' ' + cut_file + ".****\n" +
                      "scalar per node: 1 " + cut_name.substr(2) + "_2 " + cut_file.substr(2) +
                      "_2.****\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(folder.read(cut_file + ".0001").find(cut_name + "\npart\n"), 0);
}

// -max and -min mark what they write with times of their own, of which 222222 and 333333 are maps.
TEST_F(EnsightExport, OutputsOfMaximaAndMinimaAreMaximaAndMinima) {
  const std::vector<float> threes(6, 3);
  const std::vector<DatTime> marked{
      {111111, all_wet, threes}, {222222, all_wet, ones}, {333333, all_wet, ones}};
  const auto lines_of = [&](const std::string& input, const std::vector<DatTime>& times) {
    write(input, "h", times);
    const std::string console = exported(input);
    EXPECT_EQ(count_of(console,
                       "Skipping marker time, time found: 222222\n"
                       "Skipping marker time, time found: 333333\n"),
              1);
    const std::string text = folder.read("out.case");
    const auto first = text.find("scalar");
    return text.substr(first, text.find("constant") - first);
  };
  const std::string maximum = "scalar per node: Max outMax.0001\n";
  const std::string minimum = "scalar per node: Min outMin.0001\n";
  EXPECT_EQ(lines_of("a_h(maxmax).dat", marked), maximum);
  EXPECT_EQ(lines_of("a_h(MinMin).dat", marked), minimum);
  EXPECT_EQ(lines_of("a_h(minmin)_h.dat", marked), maximum);
  std::vector<DatTime> below_zero = marked;
  below_zero[0].time = -111111;
  EXPECT_EQ(lines_of("a_h.dat", below_zero), minimum);
  // Of several the last counts.
  std::vector<DatTime> several = marked;
  several.insert(several.begin(), {99999, all_wet, ones});
  EXPECT_EQ(lines_of("b_h.dat", several), maximum);
  EXPECT_NE(folder.read("outMax.0001").find("0.30000E+01"), std::string::npos);
}

TEST_F(EnsightExport, DatasetsInFoldersThatSayNothingGiveTheTimesWhereThereIsNoSeries) {
  MAKE_XMDF(folder, "a.xmdf",
            {{"a/Other/once", shape, {{5, all_wet, ones}}},
             {"a/Other/d", shape, {{0, all_wet, ones}, {1, all_wet, ones}}},
             {"a/Other/e", shape, {{0, all_wet, ones}, {2, all_wet, ones}}}});
  const std::string console = exported("a.xmdf");
  EXPECT_NE(folder.read("out.case").find("time values:\n0\n1\n"), std::string::npos);
  EXPECT_TRUE(folder.has("out_d.0002") && folder.has("out_once.0001"));
  EXPECT_FALSE(folder.has("out_e.0001"));
  EXPECT_NE(console.find("\nWARNING - Unexpected time, skip ensight write.\n"), std::string::npos);
}

// As many values as elements, or as nodes: the mesh's form tells which.
TEST_F(EnsightExport, XmdfResultsPerElementOfAFiniteVolumeMesh) {
  const auto cards = [](int elements, int nodes) {
    std::string text = "MESH2D\n";
    for (int id = 1; id <= elements; ++id)
      text += fmt::format("E3T {0} {1} {2} {3} 1\n", id, id % 2 + 1, id % 2 + 2, id % 2 + 3);
    for (int id = 1; id <= nodes; ++id) text += fmt::format("ND {} {} {} 0\n", id, id % 2, id / 2);
    return text;
  };
  const auto place_of = [&](int elements, int nodes, int values, bool has_statuses) {
    folder.write("fv.2dm", cards(elements, nodes));
    const std::vector<int> wet(has_statuses ? static_cast<std::size_t>(elements) : 0, 1);
    const std::vector<float> numbers(static_cast<std::size_t>(values), 2);
    MAKE_XMDF(folder, "a.xmdf", {{"a/Temporal/d", {values, elements}, {{0, wet, numbers}}}});
    const std::string console = exported("-2dm fv.2dm a.xmdf");
    if (!folder.has("out.case")) return console.substr(console.find("ERROR"));
    const std::string text = folder.read("out.case");
    fs::remove(folder.path("out.case"));
    EXPECT_EQ(count_of(folder.read("out_d.0001"), " 0.20000E+01\n"), values);
    return text.substr(text.find("scalar"), std::string_view("scalar per n").size());
  };
  for (const bool has_statuses : {true, false}) {
    EXPECT_EQ(place_of(5, 4, 5, has_statuses), "scalar per e");
    EXPECT_EQ(place_of(4, 4, 4, has_statuses), "scalar per e");
    EXPECT_EQ(place_of(2, 4, 4, has_statuses), "scalar per n");
    EXPECT_EQ(place_of(5, 4, 6, has_statuses)
                  .find("ERROR - Number of nodes does not match results file. Expecting number of "
                        "nodes: 6\n   Found in \"fv.2dm\": nodes 4, cells 5.\n"),
              0);
  }
}

TEST_F(EnsightExport, RemovesWhatItsOlderCaseFilePointsToAndNothingElse) {
  std::vector<DatTime> times;
  for (int i = 0; i < 20; ++i) times.push_back({static_cast<float>(i), all_wet, ones});
  times.push_back({99999, all_wet, ones});
  write("a_h.dat", "h", times);
  write("b_h.dat", "h", {{0, all_wet, ones}, {1, all_wet, ones}});
  exported("b_h.dat");
  std::vector<std::string> expected = folder.names();
  exported("a_h.dat");
  EXPECT_TRUE(folder.has("out_h.0020") && folder.has("outMax.0001") && folder.has("out_sec.const"));

  for (const char* other : {"out_h.00030", "out_h.003", "out_d.0003", "outMax.0002", "x.const"}) {
    folder.write(other, "");
    expected.emplace_back(other);
  }
  fs::create_directory(folder.path("out_h.0030"));
  fs::create_symlink("m.2dm", folder.path("out_h.0031"));
  fs::remove(folder.path("out_h.0007"));
  fs::create_hard_link(folder.path("b_h.dat"), folder.path("out_h.0007"));  // an input
  fs::create_directory(folder.path("sub"));
  folder.write("sub/out_q.0003", "");
  std::string older = folder.read("out.case");
  older.insert(older.find("scalar"),
               "scalar per node: 1 x sub/out_q.****\nscalar per node: y out_h.003\n"
               "constant per case file: z sub/x.const\n");
  folder.write("out.case", older);
  exported("b_h.dat");
  EXPECT_TRUE(fs::is_symlink(folder.path("out_h.0031")));
  fs::remove(folder.path("out_h.0031"));
  for (const char* kept : {"out_h.0030", "out_h.0007", "sub", "sub/out_q.0003"}) {
    expected.emplace_back(kept);
  }
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(folder.names(), expected);
}

// An input that is left out is an input all the same.
TEST_F(EnsightExport, NoInputIsReplacedEvenWhereItIsNotExported) {
  for (const char* name : {"a.xmdf", "b.xmdf"}) {
    MAKE_XMDF(folder, name, {{"a/Temporal/d", shape, {{0, all_wet, ones}, {1, all_wet, ones}}}});
  }
  const std::string input = folder.read("b.xmdf");
  for (const char* output : {"out_d.0002", "out.case.part", "out_text.geo.log"}) {
    fs::create_hard_link(folder.path("b.xmdf"), folder.path(output));
    const std::string console = exported("a.xmdf b.xmdf");
    EXPECT_EQ(count_of(console,
                       fmt::format("ERROR - Output file is also an input file: \"{}\"\n", output)),
              1);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a.xmdf", "b.xmdf", "m.2dm", output}));
    EXPECT_EQ(folder.read("b.xmdf"), input);
    fs::remove(folder.path(output));
  }
  write("a_h.dat", "h", {{0, all_wet, ones}});
  folder.write("m.sup", "SUPER\nMESH2D \"m.2dm\"\nDATA \"a_h.dat\"\n");
  fs::create_hard_link(folder.path("m.sup"), folder.path("out_h.0001"));
  EXPECT_EQ(count_of(exported("m.sup"), "ERROR - Output file is also an input file"), 1);
}

TEST_F(EnsightExport, WithoutOutputTimesThereIsNoTimeSet) {
  write("a_h.dat", "h", {{99999, all_wet, ones}});
  exported("a_h.dat");
  const std::string text = folder.read("out.case");
  EXPECT_EQ(text.substr(text.find("VARIABLE")),
            "VARIABLE\nscalar per node: Max outMax.0001\n"
            "constant per case:         Xref  1000.00000\n"
            "constant per case:         Yref  2000.00000\n");
}

TEST_F(EnsightExport, ASeriesEndsWithFile9999) {
  std::vector<DatTime> times;
  for (int i = 0; i < 10001; ++i) times.push_back({static_cast<float>(i), {}, ones});
  write("a_h.dat", "h", times);
  const std::string console = exported("a_h.dat", {.time_limit = std::chrono::seconds(120)});
  EXPECT_EQ(count_of(console, "Opening outfile: "), 9999);
  EXPECT_TRUE(folder.has("out_h.9999"));
  EXPECT_EQ(count_of(folder.read("out.case"), "\nnumber of steps:       9999\n"), 1);
}

// ---- Failures: one clear line, and no case file ----

TEST_F(EnsightExport, EndsInFailureWithoutACaseFile) {
  const auto expect_failure = [&](const std::string& line, const std::string& inputs,
                                  bool has_begun, const RunSettings& settings = {}) {
    folder.write("out.case", "of an older export");
    fs::remove(folder.path("out_text.geo"));
    const std::string console = exported(inputs, settings);
    EXPECT_NE(console.find("ERROR - " + line + "\n\nPress Enter to Close\n"), std::string::npos)
        << console;
    EXPECT_EQ(folder.has("out.case"), !has_begun);
    EXPECT_EQ(folder.has("out_text.geo"), has_begun);
  };
  write("a_h.dat", "h", {{0, all_wet, ones}, {1, all_wet, ones}, {2, all_wet, ones}});
  folder.write("other.2dm", test::standard_mesh() + "ND 7 0 0 0 0 0 0 0\n");
  expect_failure(
      "Number of nodes does not match results file. Expecting number of nodes: 6\n"
      "   Found in \"other.2dm\": nodes 7, cells 3.\n"
      "   -2dm names the mesh of the results; one that a .sup file names goes before it.",
      "a_h.dat -2dm other.2dm", false);
  fs::create_directory(folder.path("out_h.0003"));
  expect_failure("Could not open file: \"out_h.0003\"\n   Is a directory\nPress Enter to try again",
                 "a_h.dat", true);
  fs::remove(folder.path("out_h.0002"));
  ASSERT_EQ(::mkfifo(folder.path("out_h.0002").c_str(), 0600), 0);
  expect_failure(
      "Could not open file: \"out_h.0002\"\n   Not a regular file\nPress Enter to try again",
      "a_h.dat", true);
  fs::remove(folder.path("out_h.0002"));
  fs::remove(folder.path("out_h.0003"));
  std::string mesh = "MESH2D\nE3T 1 1 2 3 1\n";
  for (int id = 1; id <= 2000; ++id) mesh += "ND " + std::to_string(id) + " 0 0 0\n";
  folder.write("large.2dm", mesh);
  folder.write("large_h.dat", DAT_FILE({2000, 1}, "h", {{0, {1}, std::vector<float>(2000)}}));
  expect_failure("Writing file \"out_text.geo\": File too large", "large_h.dat -2dm large.2dm",
                 true, {.largest_file = 50000});
  fs::remove(folder.path("out_binary.geo.log"));
  fs::create_symlink("m.2dm", folder.path("out_binary.geo.log"));
  expect_failure("Output file is also an input file: \"out_binary.geo.log\"", "a_h.dat", false);
}

}  // namespace
}  // namespace quillet::testing
