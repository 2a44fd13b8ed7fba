// --summary and the progress of a run: true for every operation and kind of file.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "build_paths.h"
#include "captured_console.h"
#include "case_names.h"
#include "driver/run.h"
#include "program/writing_runs.h"
#include "support/run_tally.h"

namespace quillet::testing {
namespace {

std::string standard_error_of(const Workspace& folder, const std::string& arguments) {
  const auto file = folder.path("standard_error");
  RunSettings settings;
  settings.error_output = ::open(file.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  RUN(folder, WORDS(arguments), settings);
  ::close(settings.error_output);
  std::string text = folder.read("standard_error");
  if (program_is_foreign) std::erase(text, '\r');
  return text;
}

// Of time series the values at the points, of rasters those at the nodes.
TEST(Summary, SaysTheRangeOfRastersAndTimeSeries) {
  const Workspace folder;
  MAKE_INPUTS_OF_WRITING_RUNS(folder);
  const std::string series = standard_error_of(folder, "-b --summary --points=g.csv g_d.dat");
  EXPECT_NE(series.find("2 read, 2 written\nValues written      2.3333333 to 8\nErrors"),
            std::string::npos)
      << series;
  const std::string raster = standard_error_of(folder, "-b --summary --grid=1 g_d.dat");
  EXPECT_NE(
      raster.find("2 read, 2 written\nValues written      1 to 9\nLargest value       node 1"),
      std::string::npos)
      << raster;
}

TEST(Summary, SaysWhatTheRunDid) {
  const Workspace folder;
  folder.write(
      "a_d.dat",
      DAT_FILE({2, 3}, "a",
               {{0, {1, 0, 0}, {5, -1}}, {1.5F, {1, 1, 0}, {2, 9}}, {2, {0, 0, 0}, {0, 0}}}));
  const std::string text = standard_error_of(folder, "-b --summary -r0 -out r.dat a_d.dat");
  const std::string times = "Output times        2 read, 2 written\n";
  const auto size = [](std::size_t bytes) { return " (" + std::to_string(bytes) + " bytes)\n"; };
  const std::size_t step = 4 + 5 + 3 + 8;
  EXPECT_TRUE(text.starts_with(
      "Operation           -r (remove)\n"
      "Input               a_d.dat" +
      size(92 + 3 * step + 4) + "Output              r.dat" + size(92 + 2 * step + 4) + times +
      "Values written      0 to 9\n"
      "Largest value       node 2, time 1.5\n"
      "Wet cells at most   2 of 3\n"
      "Errors, warnings    0, 0\n"
      "Time                "))
      << text;
}

TEST(Summary, IsThereAfterAnErrorAndLooksAtResultsOnly) {
  const Workspace folder;
  MAKE_INPUTS_OF_WRITING_RUNS(folder);
  const std::string failed = standard_error_of(folder, "-b --summary -max none.dat");
  EXPECT_NE(failed.find("Operation           -max (maximum)\nInput               none.dat\n"
                        "Output              none\n"),
            std::string::npos)
      << failed;
  EXPECT_NE(failed.find("Errors, warnings    1, 0\n"), std::string::npos) << failed;
  for (const std::string output : {"r.dat", "r.xmdf"}) {
    const std::string maximum =
        standard_error_of(folder, "-b --summary -max a_d.dat b_d.dat -out " + output);
    EXPECT_NE(maximum.find("Values written      0 to 5\nLargest value       node 1, time 111111\n"),
              std::string::npos)
        << maximum;
  }
}

// ---- Every operation on either kind of file ----

// Two nodes, three cells. The second run is at times in which the first has something to differ in;
// the third goes on where the first ends.
const DatShape shape{2, 3};
const std::vector<DatTime> first_times{
    {0, {1, 0, 0}, {5, -1}}, {1.5F, {1, 1, 0}, {2, 9}}, {2, {0, 0, 0}, {0, 0}}};
const std::vector<DatTime> second_times{
    {0, {0, 1, 1}, {1, 1}}, {1.5F, {0, 1, 1}, {1, 1}}, {2, {0, 1, 1}, {4, 1}}};
const std::vector<DatTime> third_times{{2, {1, 1, 1}, {7, 7}}, {3, {1, 1, 1}, {8, 1}}};
const DatTime first_maximum{99999, {1, 1, 0}, {6, 10}};
const DatTime second_maximum{99999, {0, 1, 1}, {3, 3}};
const std::vector<DatTime> flows{{0, {1, 0, 0}, {5, 0, 0, 0}}, {1.5F, {1, 1, 0}, {0, 5, 6, 8}}};

// Wet everywhere over a bed at 0.
std::vector<DatTime> levels(bool has_maximum) {
  std::vector<DatTime> times;
  for (const float time : {0.0F, 1.5F, 2.0F}) times.push_back({time, {1, 1, 1}, {20, 20}});
  if (has_maximum) times.push_back({99999, {1, 1, 1}, {20, 20}});
  return times;
}

void make_inputs(const Workspace& folder) {
  const auto dat = [&](const std::string& name, std::vector<DatTime> times, const DatTime& last) {
    times.push_back(last);
    folder.write(name + "_d.dat", DAT_FILE(shape, name, times));
    folder.write(name + "_h.dat", DAT_FILE(shape, name, levels(true)));
  };
  dat("a", first_times, first_maximum);
  dat("b", second_times, second_maximum);
  folder.write("c_d.dat", DAT_FILE(shape, "c", third_times));
  folder.write("a_V.dat", DAT_FILE({2, 3, true}, "v", flows));
  folder.write("f_d.dat", DAT_FILE({3, 3}, "f", {{0, {1, 0, 1}, {4, 7, -2}}}));
  const auto xmdf = [&](const std::string& name, const std::vector<DatTime>& times,
                        const DatTime& maximum) {
    MAKE_XMDF(folder, name,
              {{"r/Temporal/Depth", shape, times},
               {"r/Maximums/Depth", shape, {maximum}},
               {"r/Temporal/Water Level", shape, levels(false)}});
  };
  xmdf("x.xmdf", first_times, first_maximum);
  xmdf("y.xmdf", second_times, second_maximum);
  MAKE_XMDF(folder, "v.xmdf", {{"r/Temporal/Vector Velocity", {2, 3, true}, flows}});
  folder.write("m.2dm",
               "MESH2D\nE3T 1 1 1 1 1\nE3T 2 2 2 2 1\nE3T 3 1 2 2 1\nND 1 0 0 0\nND 2 1 0 0\n");
}

struct Summed {
  std::string name;
  std::string arguments;
  std::string times;    // "1 read, 3 written"
  std::string values;   // "6 to 10"; empty: none
  std::string largest;  // "node 2, time 111111"
  int wet_cells = 0;
};
std::ostream& operator<<(std::ostream& out, const Summed& run) {
  return out << run.arguments;
}
class Summaries : public ::testing::TestWithParam<Summed> {};

TEST_P(Summaries, TellWhatWasReadAndWritten) {
  const Summed& run = GetParam();
  const Workspace folder;
  make_inputs(folder);
  std::string expected = "\nOutput times        " + run.times + "\n";
  if (!run.values.empty()) {
    expected += "Values written      " + run.values + "\nLargest value       " + run.largest +
                "\nWet cells at most   " + std::to_string(run.wet_cells) + " of 3\n";
  }
  const std::string text =
      standard_error_of(folder, "-b --summary -2dm m.2dm -out r " + run.arguments);
  EXPECT_NE(text.find(expected + "Errors, warnings    0, "), std::string::npos) << text << expected;
}

// Sees how many output times are read between two looks at it.
class WatchingConsole : public test::CapturedConsole {
 public:
  void say(std::string_view) override { go_on(); }
  void go_on() override {
    most_unseen = std::max(most_unseen, RUN_TALLY().times_read - seen);
    seen = RUN_TALLY().times_read;
  }

  std::int64_t most_unseen = 0;

 private:
  std::int64_t seen = 0;
};

// In this process, which keeps the tally of the run.
TEST_P(Summaries, ComeWhenTheProgressIsWhole) {
  const Workspace folder;
  make_inputs(folder);
  const auto here = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  WatchingConsole console;
  RUN_QUILLET(WORDS("-b --no-progress -2dm m.2dm -out r " + GetParam().arguments), console);
  std::filesystem::current_path(here);
  EXPECT_LE(console.most_unseen, 1);
  // What a .dat file holds is not known before: the bound counts one more.
  const std::string& arguments = GetParam().arguments;
  std::int64_t dat_files = 0;
  for (auto at = arguments.find(".dat"); at != std::string::npos;
       at = arguments.find(".dat", at + 1))
    ++dat_files;
  EXPECT_LE(RUN_TALLY().times_passed, RUN_TALLY().times_to_pass);
  EXPECT_GE(RUN_TALLY().times_passed, RUN_TALLY().times_to_pass - dat_files);
}

INSTANTIATE_TEST_SUITE_P(
    Dat, Summaries,
    ::testing::Values(
        Summed{"max", "-max a_d.dat", "1 read, 3 written", "6 to 10", "node 2, time 111111", 2},
        Summed{"max_of_times", "-max -ignore_mm a_d.dat", "3 read, 3 written", "5 to 9",
               "node 2, time 111111", 2},
        Summed{"max_at_time", "-max -t1.5 a_d.dat b_d.dat", "2 read, 2 written", "2 to 9",
               "node 2, time 111111", 3},
        Summed{"max_of_vectors", "-max a_V.dat", "1 read, 3 written", "0 to 5",
               "node 1, time 111111", 1},
        Summed{"min", "-min a_d.dat", "1 read, 3 written", "0 to 0", "node 1, time -111111", 2},
        Summed{"dif_with_levels", "-dif a_d.dat b_d.dat", "8 read, 4 written", "-4 to 8",
               "node 2, time 1.5", 3},
        Summed{"k", "-k1.5 a_d.dat", "1 read, 1 written", "2 to 9", "node 2, time 1.5", 2},
        Summed{"r", "-r1.5 a_d.dat", "3 read, 3 written", "-1 to 10", "node 2, time 99999", 2},
        Summed{"range", "-rangeA1 -rangeB9 a_d.dat", "2 read, 2 written", "0 to 9",
               "node 2, time 1.5", 2},
        Summed{"con", "-con a_d.dat c_d.dat", "4 read, 4 written", "-1 to 9", "node 2, time 1.5",
               3},
        Summed{"times", "-times a_d.dat", "0 read, 0 written", "", ""},
        Summed{"dur", "-dur0 a_d.dat", "3 read, 1 written", "1.85 to 2", "node 1, time 0", 2},
        Summed{"toi", "-toi1 a_d.dat", "3 read, 1 written", "-99999 to 0.15", "node 2, time 0", 2},
        Summed{"trim", "-trim3 a_d.dat", "4 read, 4 written", "-1 to 3", "node 1, time 0", 2},
        Summed{"va", "-va a_V.dat", "2 read, 2 written", "0 to 90", "node 1, time 0", 2},
        Summed{"conv", "-conv a_d.dat", "4 read, 4 written", "-1 to 10", "node 2, time 99999", 2},
        Summed{"ensight", "-ensight a_d.dat", "4 read, 4 written", "0 to 10", "node 2, time 99999",
               2},
        Summed{"ensight_of_cells", "-ensight f_d.dat", "1 read, 1 written", "-2 to 4",
               "cell 1, time 0", 2}),
    NameOfCase{});

INSTANTIATE_TEST_SUITE_P(
    Xmdf, Summaries,
    ::testing::Values(
        Summed{"max", "-max -typed x.xmdf", "1 read, 3 written", "6 to 10", "node 2, time 111111",
               2},
        Summed{"max_of_vectors", "-max -typeV v.xmdf", "2 read, 3 written", "5 to 10",
               "node 2, time 111111", 2},
        Summed{"min", "-min -typed x.xmdf", "3 read, 3 written", "-1 to 0", "node 1, time -111111",
               0},
        Summed{"dif_with_levels", "-dif -typed x.xmdf y.xmdf", "6 read, 3 written", "-4 to 8",
               "node 2, time 1.5", 3},
        Summed{"k", "-k99999 -typed x.xmdf", "1 read, 1 written", "6 to 10", "node 2, time 99999",
               2},
        Summed{"range", "-rangeA1 -rangeB9 -typed x.xmdf", "2 read, 2 written", "0 to 9",
               "node 2, time 1.5", 2},
        Summed{"con", "-con -typed x.xmdf c_d.dat", "4 read, 4 written", "-1 to 9",
               "node 2, time 1.5", 3},
        Summed{"times", "-times -typed x.xmdf", "0 read, 0 written", "", ""},
        Summed{"dur", "-dur0 -typed x.xmdf", "3 read, 1 written", "1.85 to 2", "node 1, time 0", 2},
        Summed{"va", "-va -typeV v.xmdf", "2 read, 2 written", "0 to 90", "node 1, time 0", 2},
        Summed{"conv", "-conv -typed x.xmdf", "4 read, 4 written", "-1 to 10", "node 2, time 99999",
               2},
        Summed{"ensight", "-ensight -typed x.xmdf", "4 read, 4 written", "0 to 10",
               "node 2, time 99999", 2},
        Summed{"xnfo", "-xnfo x.xmdf", "0 read, 0 written", "", ""}),
    NameOfCase{});

}  // namespace
}  // namespace quillet::testing
