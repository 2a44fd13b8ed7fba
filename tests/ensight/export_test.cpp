#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <deque>
#include <sstream>

#include "ensight/dataset_plan.h"
#include "ensight/ensight_export.h"
#include "ensight/ensight_names.h"
#include "ensight/ensight_test_data.h"
#include "program_runner.h"

namespace quillet {
namespace {

using test::MemoryDataset;
using test::MemoryOutput;
using testing::Workspace;

// One export into a folder of its own.
struct Export {
  explicit Export(const std::string& mesh, std::int32_t nodes, std::int32_t cells) {
    folder.write("m.2dm", mesh);
    run.output_base = folder.path("out").string();
    run.mesh_file = folder.path("m.2dm").string();
    run.node_count = nodes;
    run.cell_count = cells;
  }

  void add_input(const std::string& name, const std::string& type,
                 EnsightFormat format = EnsightFormat::dat) {
    run.inputs.push_back({folder.path(name).string(), format, {type, false, ""}, {}});
  }

  MemoryDataset& add(const std::string& name, DatasetKind kind, std::vector<MemoryOutput> outputs) {
    datasets.emplace_back(name, kind, std::move(outputs));
    run.inputs.back().datasets.push_back(&datasets.back());
    return datasets.back();
  }

  // The console without the folder.
  std::string perform() {
    std::string console = test::console_of_returning([&] { EXPORT_ENSIGHT(run); });
    return without_folder(console);
  }

  std::string without_folder(std::string text) const {
    const std::string path = folder.path().string();
    for (auto at = text.find(path); at != std::string::npos; at = text.find(path)) {
      text.erase(at, path.size());
    }
    return text;
  }

  std::string case_line(const std::string& start) const {
    std::istringstream stream(folder.read("out.case"));
    for (std::string line; std::getline(stream, line);) {
      if (line.compare(0, start.size(), start) == 0) return line;
    }
    return "no line " + start;
  }

  Workspace folder;
  EnsightRun run;
  std::deque<MemoryDataset> datasets;
};

const std::vector<std::int8_t> all_wet{1, 1, 1};

Export standard_export() {
  return Export(test::standard_mesh(), 6, 3);
}

int count_of(const std::string& text, const std::string& part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(EnsightExport, ConsoleCaseAndVariableFilesOfADatInput) {
  Export data = standard_export();
  data.add_input("run_h.dat", "_h");
  const std::vector<float> levels{1.5F, 2, 3, 4, 5, 1234.5F};
  data.add("Water Level", DatasetKind::series,
           {{0, {1, 0, 0}, levels}, {25.508, {-1, 0, 1}, levels}});
  data.add("Water Level", DatasetKind::maximum, {{99999, all_wet, levels}});
  data.add("Water Level", DatasetKind::special_times, {{99999.1, all_wet, levels}});
  const std::string console = data.perform();

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

  // 25.508 h are 1 day, 1 hour, 30 minutes and 28.8 seconds.
  EXPECT_EQ(data.folder.read("out.case"),
            "FORMAT\n"
            "type: ensight gold\n"
            "GEOMETRY\n"
            "model: out_text.geo\n"
            "VARIABLE\n"
            "scalar per node: 1 Water_Level out_Water_Level.****\n"
            "scalar per node: Max outMax.0001\n"
            "scalar per node: _tHMax out_tHMax.0001\n"
            "constant per case:         1 day 0.00000E+00 0.10000E+01\n"
            "constant per case:         1 hrs 0.00000E+00 0.10000E+01\n"
            "constant per case:         1 min 0.00000E+00 0.30000E+02\n"
            "constant per case:         1 sec 0.00000E+00 0.28800E+02\n"
            "constant per case:         Xref   0.10000E+04\n"
            "constant per case:         Yref   0.20000E+04\n"
            "TIME\n"
            "time set:               1\n"
            "number of steps:          2\n"
            "filename start number:  1\n"
            "filename increment:     1\n"
            "time values:\n"
            " 0.00000E+00\n"
            " 0.25508E+02\n");
  EXPECT_EQ(data.folder.read("out_Water_Level.0001"),
            "Water Level\npart\n         1\ncoordinates\n"
            " 0.15000E+01\n 0.00000E+00\n 0.30000E+01\n 0.40000E+01\n 0.00000E+00\n 0.00000E+00\n");
  // Only a status of 1 is wet: the corners of the quadrilateral are.
  EXPECT_EQ(data.folder.read("out_Water_Level.0002"),
            "Water Level\npart\n         1\ncoordinates\n"
            " 0.00000E+00\n 0.20000E+01\n 0.30000E+01\n 0.00000E+00\n 0.50000E+01\n 0.12345E+04\n");
  EXPECT_EQ(data.folder.read("out_tHMax.0001").find("Time of Peak h\npart\n"), 0);
  EXPECT_EQ(data.folder.names(), (std::vector<std::string>{
                                     "m.2dm", "out.case", "outMax.0001", "out_Water_Level.0001",
                                     "out_Water_Level.0002", "out_binary.geo", "out_binary.geo.log",
                                     "out_tHMax.0001", "out_text.geo", "out_text.geo.log"}));
}

TEST(EnsightExport, FiniteVolumeValuesStandPerElementAndByShape) {
  Export data(test::fv_mesh(), 3, 3);
  data.run.is_finite_volume = true;
  data.add_input("run_V.dat", "_v");
  data.add("Velocity", DatasetKind::series, {{1, {1, 1, 0}, {1, 2, 3}, {-1, -2, -3}}});
  data.perform();
  EXPECT_EQ(data.folder.read("out_Velocity.0001"),
            "Velocity\npart\n         1\n"
            "tria3\n 0.10000E+01\n 0.00000E+00\n-0.10000E+01\n 0.00000E+00\n"
            " 0.00000E+00\n 0.00000E+00\n"
            "quad4\n 0.20000E+01\n-0.20000E+01\n 0.00000E+00\n");
  EXPECT_EQ(data.case_line("vector"), "vector per element: 1 Velocity out_Velocity.****");
}

TEST(EnsightExport, NineNodeMeshesHaveTheValueOfTheCentreNodeOrTheMeanOfTheCorners) {
  Export data(test::quad9_mesh(), 10, 2);
  data.add_input("run_d.dat", "_d");
  const std::vector<float> depths{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  data.add("Depth", DatasetKind::series, {{0, {1, 1}, depths}, {1, {0, 1}, depths}});
  data.perform();
  const std::string head = "Depth\npart\n         1\ntria3\n 0.60000E+01\nquad8\n";
  EXPECT_EQ(data.folder.read("out_Depth.0001"), head + " 0.90000E+01\n");
  EXPECT_EQ(data.folder.read("out_Depth.0002"), head + " 0.00000E+00\n");
}

TEST(EnsightExport, VectorsPerNodeHaveThreeRunsAndAMapOfSingleValuesAmongThemHasX) {
  Export data = standard_export();
  data.add_input("run_V.dat", "_v");
  const std::vector<float> x{1, 2, 3, 4, 5, 6};
  data.add("V", DatasetKind::series, {{0, all_wet, x, x}, {222222, all_wet, x, {}}});
  data.perform();
  const std::string run =
      " 0.10000E+01\n 0.20000E+01\n 0.30000E+01\n 0.40000E+01\n 0.50000E+01\n 0.60000E+01\n";
  std::string zeros;
  for (int i = 0; i < 6; ++i) zeros += " 0.00000E+00\n";
  const std::string head = "V\npart\n         1\ncoordinates\n";
  EXPECT_EQ(data.folder.read("out_V.0001"), head + run + run + zeros);
  EXPECT_EQ(data.folder.read("out_V.0002"), head + run + zeros + zeros);
}

TEST(EnsightExport, XmdfFoldersDecideAndMissingStatusesCountAsWet) {
  Export data = standard_export();
  data.run.cell_count.reset();
  data.add_input("a.xmdf", "_", EnsightFormat::xmdf);
  const std::vector<float> x{1, 1, 1, 1, 1, 1};
  data.add("Depth", DatasetKind::series, {{0, {0, 0, 0}, x}, {1, {}, x}, {2, {}, x}});
  data.add("Depth", DatasetKind::maximum, {{0, {}, x}});
  data.add("Depth", DatasetKind::minimum, {{0, {}, x}});
  data.add("Bed/top", DatasetKind::fixed, {{0, {}, x}});
  data.add("Time of Peak h", DatasetKind::special_times, {{0, {}, x}});
  data.add("Flow", DatasetKind::other, {{0, {}, x}, {1, {}, x}, {2, {}, x}});
  data.add("One", DatasetKind::other, {{1, {}, x}});
  data.add("Two", DatasetKind::other, {{0, {}, x}, {7, {}, x}});
  data.add_input("b.xmdf", "_", EnsightFormat::xmdf);
  const std::string console = data.perform();
  EXPECT_EQ(console.find("Converting xmdf file to ensight text format.\n"
                         "WARNING - Only one file used for -ensight option\n"),
            0);
  const std::string text = data.folder.read("out.case");
  EXPECT_NE(text.find("scalar per node: 1 Depth out_Depth.****\n"
                      "scalar per node: Max_Depth out_Max_Depth.0001\n"
                      "scalar per node: Min_Depth out_Min_Depth.0001\n"
                      "scalar per node: Fixed_Bed/top out_Fixed_Bed_top.0001\n"
                      "scalar per node: Time_of_Peak_h out_Time_of_Peak_h.0001\n"
                      "scalar per node: 1 Flow out_Flow.****\n"
                      "scalar per node: One out_One.0001\n"
                      "constant"),
            std::string::npos);
  EXPECT_NE(console.find("Datasets Name: Two\nWARNING - Unexpected time, skip ensight write.\n"),
            std::string::npos);
  EXPECT_EQ(count_of(data.folder.read("out_Depth.0001"), "0.10000E+01"), 0);
  EXPECT_EQ(count_of(data.folder.read("out_Depth.0002"), "0.10000E+01"), 6);
}

// The first series gives the output times. Another is written where it has them all, in their
// order; one that lacks a time would leave the case file pointing to a file that is not there.
TEST(EnsightExport, OtherSeriesAreNumberedByTheRunsTimesOrPassedOver) {
  Export data = standard_export();
  const std::vector<float> x{1, 1, 1, 1, 1, 1};
  const std::vector<float> z{3, 3, 3, 3, 3, 3};
  data.add_input("a_h.dat", "_h");
  data.add("h", DatasetKind::series, {{1, all_wet, x}, {2, all_wet, x}});
  data.add_input("b_h.dat", "_h");
  data.add("h", DatasetKind::series,
           {{0.5, all_wet, x}, {1.00005, all_wet, x}, {1.5, all_wet, x}, {2, all_wet, z}});
  data.add_input("c_h.dat", "_h");
  data.add("h", DatasetKind::series, {{1, all_wet, x}});
  data.add_input("d_q.dat", "_q");
  data.add("q", DatasetKind::special_times, {{99999.1, all_wet, x}});
  const std::string console = data.perform();
  EXPECT_EQ(data.case_line("scalar per node: 1 h "), "scalar per node: 1 h out_a_h_h.****");
  EXPECT_EQ(data.case_line("scalar per node: 1 h_2 "), "scalar per node: 1 h_2 out_b_h_h.****");
  EXPECT_EQ(count_of(data.folder.read("out.case"), "scalar per node"), 2);
  EXPECT_NE(data.folder.read("out_b_h_h.0002").find("0.30000E+01"), std::string::npos);
  EXPECT_FALSE(data.folder.has("out_b_h_h.0003") || data.folder.has("out_c_h_h.0001"));
  EXPECT_EQ(count_of(console, "WARNING - Unexpected time, skip ensight write.\n"), 4);
}

TEST(EnsightExport, NamesHoldNoBlanksAndNoLeadingDigitsAndAreDistinct) {
  Export data = standard_export();
  data.run.output_base = data.folder.path("2nd run*.dat").string();
  const std::vector<float> x(6);
  data.add_input("in put_h.dat", "_h");
  data.add("100yr  Depth", DatasetKind::series, {{0, all_wet, x}});
  data.add("a b", DatasetKind::maximum, {{99999, all_wet, x}});
  data.add_input("q.dat", "XX");
  data.add("A_B", DatasetKind::maximum, {{99999, all_wet, x}});
  data.perform();
  const std::string text = data.folder.read("2nd_run_.case");
  EXPECT_NE(text.find("model: 2nd_run__text.geo\nVARIABLE\n"
                      "scalar per node: 1 d100yr__Depth 2nd_run__in_put_h_100yr__Depth.****\n"
                      "scalar per node: Max_a_b 2nd_run__in_put_hMax.0001\n"
                      "scalar per node: Max_A_B_2 2nd_run__qMax.0001\n"),
            std::string::npos)
      << text;
  EXPECT_TRUE(data.folder.has("2nd_run__in_put_h_100yr__Depth.0001"));
}

TEST(EnsightExport, CalendarLinesStayBelow255CharactersAndCarryRounding) {
  Export data = standard_export();
  data.add_input("a_h.dat", "_h");
  std::vector<MemoryOutput> outputs(20, {0, all_wet, std::vector<float>(6), {}});
  for (std::size_t i = 0; i < outputs.size(); ++i) outputs[i].time = -0.5 + static_cast<double>(i);
  outputs[19].time = 23.9999999;  // the next day, to the millisecond
  data.add("h", DatasetKind::series, outputs);
  data.perform();
  const std::string text = data.folder.read("out.case");
  EXPECT_NE(text.find("1 day -0.10000E+01 0.00000E+00"), std::string::npos);
  EXPECT_NE(text.find("1 hrs 0.23000E+02 0.00000E+00"), std::string::npos);
  EXPECT_NE(text.find("\nconstant per case:         1 day 0.00000E+00 0.10000E+01\n"),
            std::string::npos);
  EXPECT_NE(text.find("\nconstant per case:         1 sec 0.00000E+00 0.00000E+00\n"),
            std::string::npos);
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) EXPECT_LT(line.size(), 255U) << line;
}

TEST(EnsightExport, WithoutOutputTimesThereIsNoTimeSet) {
  Export data = standard_export();
  data.add_input("a_h.dat", "_h");
  data.add("h", DatasetKind::maximum, {{99999, all_wet, std::vector<float>(6)}});
  data.perform();
  const std::string text = data.folder.read("out.case");
  EXPECT_EQ(text.substr(text.find("VARIABLE")),
            "VARIABLE\nscalar per node: Max outMax.0001\n"
            "constant per case:         Xref   0.10000E+04\n"
            "constant per case:         Yref   0.20000E+04\n");
}

TEST(EnsightExport, ASeriesEndsWithFile9999) {
  Export data = standard_export();
  data.add_input("a_h.dat", "_h");
  std::vector<MemoryOutput> outputs(10001);
  for (std::size_t i = 0; i < outputs.size(); ++i) outputs[i].time = static_cast<double>(i);
  const MemoryDataset& dataset = data.add("h", DatasetKind::series, outputs);
  const DatasetPlan plan =
      PLAN_DATASET(data.run, data.run.inputs[0], dataset, RUN_TIMES(data.run.inputs));
  EXPECT_TRUE(plan.has_too_many);
  ASSERT_EQ(plan.outputs.size(), 9999U);
  EXPECT_EQ(plan.outputs.back().number, 9999);
  EXPECT_EQ(plan.unexpected_outputs, 0);
}

TEST(EnsightExport, NumbersOfVariableFiles) {
  EXPECT_EQ(ENSIGHT_NUMBER_SUFFIX("a  ", 7), "a.0007");
  EXPECT_EQ(ENSIGHT_NUMBER_SUFFIX("a", 42), "a.0042");
  EXPECT_EQ(ENSIGHT_NUMBER_SUFFIX("a", 999), "a.0999");
  EXPECT_EQ(ENSIGHT_NUMBER_SUFFIX("a", 1000), "a.1000");
  const std::string console =
      test::console_of_returning([] { EXPECT_EQ(ENSIGHT_NUMBER_SUFFIX("a", 10000), ""); });
  EXPECT_EQ(console, "ERROR - Maximum of 10,000 outputs per ensight dataset.\n");
}

// ---- Failures: one clear line, and no case file ----

struct Failure {
  const char* name;
  void (*prepare)(Export& data);
  const char* message;
};

class EnsightFailure : public ::testing::TestWithParam<Failure> {};

TEST_P(EnsightFailure, EndsTheRunWithoutACaseFile) {
  Export data = standard_export();
  data.add_input("a_h.dat", "_h");
  std::vector<MemoryOutput> outputs(4, {0, all_wet, std::vector<float>(6), {}});
  for (std::size_t i = 0; i < outputs.size(); ++i) outputs[i].time = static_cast<double>(i);
  data.add("h", DatasetKind::series, outputs);
  data.folder.write("out.case", "of an older export");
  GetParam().prepare(data);
  const std::string console = test::console_of([&] { EXPORT_ENSIGHT(data.run); });
  EXPECT_NE(data.without_folder(console).find(GetParam().message), std::string::npos) << console;
  EXPECT_EQ(console.find("Finished.\n"), std::string::npos);
  if (std::filesystem::is_regular_file(data.folder.path("out.case"))) {
    EXPECT_EQ(data.folder.read("out.case"), "of an older export");
    EXPECT_FALSE(data.folder.has("out_text.geo"));
  }
}

void limit_file_size(rlim_t bytes) {
  ::signal(SIGXFSZ, SIG_IGN);
  const rlimit limits{bytes, bytes};
  ::setrlimit(RLIMIT_FSIZE, &limits);
}

INSTANTIATE_TEST_SUITE_P(
    All, EnsightFailure,
    ::testing::Values(
        Failure{"DiskFullInTheMiddleOfASeries",
                [](Export& data) {
                  data.datasets.front().text.assign(100000, 'h');
                  data.datasets.front().before_read = [](std::size_t output) {
                    if (output == 2) limit_file_size(50000);
                  };
                },
                "\nERROR - Writing file \"out_h.0003\": File too large\n"},
        Failure{"NoSuchFolder",
                [](Export& data) { data.run.output_base = data.folder.path("no/out").string(); },
                "\nERROR - Could not open file: \"no/out_text.geo\"\n"},
        Failure{"AFolderInPlaceOfTheCaseFile",
                [](Export& data) {
                  std::filesystem::remove(data.folder.path("out.case"));
                  std::filesystem::create_directory(data.folder.path("out.case"));
                },
                "\nERROR - Could not open file: \"out.case\"\n"},
        Failure{"MixedInputs",
                [](Export& data) { data.add_input("b.xmdf", "_", EnsightFormat::xmdf); },
                "\nERROR - Must specify all .dat or all .xmdf files for export to ensight.\n"},
        Failure{"MeshOfOtherResults", [](Export& data) { data.run.node_count = 7; },
                "ERROR - Number of nodes does not match results file. Expecting number of nodes: "
                "7\n"},
        Failure{"OutputThatIsTheMesh",
                [](Export& data) {
                  std::filesystem::create_symlink("m.2dm", data.folder.path("out_binary.geo.log"));
                },
                "\nERROR - Output file is also an input file: \"out_binary.geo.log\"\n"}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
}  // namespace quillet
