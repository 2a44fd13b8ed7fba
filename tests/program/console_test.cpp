// Whole console texts. The expected texts stand in expected/.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "build_paths.h"
#include "dat_builder.h"
#include "program_runner.h"

namespace quillet::testing {
namespace {

std::string expected_text(const std::string& name) {
  std::ifstream stream(tests_folder + "/program/expected/" + name);
  std::string text{std::istreambuf_iterator<char>(stream), {}};
  EXPECT_FALSE(text.empty()) << name;
  return text;
}

TEST(Console, NoArgumentsShowTheUsageAndPause) {
  const Workspace folder;
  const RunResult run = RUN(folder, {});
  EXPECT_EQ(run.output,
            "\nBuild 2020-07-AH\n\n" + expected_text("usage.txt") + "Press Enter to Continue\n");
  EXPECT_TRUE(run.ended_well());
}

TEST(Console, MaximumOfTwoFilesFromStartToEnd) {
  const Workspace folder;
  const DatShape shape{3, 1};
  folder.write("a_d.dat",
               DAT_FILE(shape, "first",
                        {{0, {1}, {1, 2, 3}}, {0.5F, {1}, {4, 5, 6}}, {99999, {1}, {7, 8, 9}}}));
  folder.write("b_d.dat",
               DAT_FILE(shape, "second", {{0.25F, {1}, {1, 2, 3}}, {1.75F, {1}, {4, 5, 6}}}));
  LiveRun run(folder, {"-max", "a_d.dat", "b_d.dat", "-b"});
  EXPECT_TRUE(run.ends_by_itself());
  const RunResult result = run.finish();
  EXPECT_EQ(result.output, expected_text("max_two_files.txt"));
  EXPECT_TRUE(result.ended_well());
}

TEST(Console, MinimumIgnoringStoredValuesFromStartToEnd) {
  const Workspace folder;
  const DatTime stored{99999, {1, 1}, {0, 0}};
  folder.write("run.dat", DAT_FILE({2, 2}, "first",
                                   {{0.5F, {1, 1}, {1, 2}}, stored, {2, {1, 1}, {3, 4}}, stored}));
  const RunResult run = RUN(folder, {"-min", "-ignore_mm", "-dttol0.01", "-2dm", "mesh.2dm", "-out",
                                     "low.dat", "run.dat"});
  EXPECT_EQ(run.output, expected_text("min_ignoring_stored.txt"));
  EXPECT_TRUE(run.ended_well());
}

// The waits: a user who types is waited for, and so is one who asked for no waiting when the run
// fails.
TEST(Endings, WaitForEnter) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE({1, 0}, "a", {{0, {}, {1}}}));
  const std::string exits = "Press Enter to Close\n", pauses = "Press Enter to Continue\n";
  for (const auto& [arguments, prompt] : std::vector<std::pair<std::string, std::string>>{
           {"-b -x", pauses}, {"-b -max -min", exits}, {"-b", exits}, {"-max a_d.dat", pauses}}) {
    LiveRun run(folder, WORDS(arguments));
    ASSERT_TRUE(run.wait_for(prompt)) << arguments;
    run.type("Enter is what ends a line");
    EXPECT_TRUE(run.keeps_waiting()) << arguments;
    run.type("\n");
    EXPECT_TRUE(run.ends_by_itself()) << arguments;
    const RunResult result = run.finish();
    const auto lines = result.lines();
    EXPECT_EQ(lines.back() + "\n", prompt);
    EXPECT_EQ(lines[lines.size() - 2].empty(), prompt == exits) << arguments;
    EXPECT_TRUE(result.ended_well());
  }
}

TEST(Console, ClosedStandardInputEndsTheWaits) {
  const Workspace folder;
  const RunResult run = RUN(folder, {}, {.has_input = false});
  EXPECT_EQ(run.lines().back(), "Press Enter to Continue");
  EXPECT_TRUE(run.ended_well());
}

void expect_lines(const std::string& arguments, const std::vector<std::string>& lines) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE({3, 1}, "a", {{0, {1}, {1, 2, 3}}, {1, {1}, {4, 5, 6}}}));
  folder.write("A_V.DAT", DAT_FILE({3, 1, true}, "a", {{0, {1}, {1, 2, 3, 4, 5, 6}}}));
  folder.write("cells_d.dat", DAT_FILE({3, 2}, "a", {{0, {1, 1}, {1, 2, 3}}}));
  folder.write("a.txt", "text");
  const RunResult run = RUN(folder, WORDS(arguments));
  for (const std::string& line : lines) {
    EXPECT_TRUE(run.has_line(line)) << line << "\nis not in\n" << run.output;
  }
  EXPECT_TRUE(run.ended_well());
}

TEST(Console, SaysWhatItMakesOfTheInputs) {
  expect_lines("-max a.txt", {"   File  1: a.txt",
                              "ERROR - Unable to determine file type (expecting .dat or .xmdf)."});
  expect_lines("-max a_d.dat -out r",
               {"Specified output file has no extension", "Output .dat File: r.dat"});
  expect_lines("-max a_d.dat -out r.1", {"Output .dat File: r.1.dat"});
  expect_lines("-max A_V.DAT -out r.DAT", {"Output .dat File: r.DAT"});
  expect_lines("-times a_d.dat -out r", {"Output Text File: r.txt"});
  expect_lines(
      "-max a_d.dat -out r.xmdf",
      {"Only DAT inputs.", "Specified output file is .xmdf type", "Using XMDF for output type"});
  expect_lines("-max a_d.dat x.XMDF",
               {"Both XMDF and DAT inputs", "Using XMDF for output type",
                "ERROR - Must specify an output type to be processed if using xmdf files.",
                "   Use -type<output type> to use a specific output type.",
                "   Output types should be as specified in the .ocf eg. h, V, q, or d",
                "   E.g. -typeV to process the velocity results."});
  expect_lines("-max x.xmdf -out r.dat", {"Only XMDF inputs.", "Specified output file is .dat type",
                                          "Using XMDF for output type"});
  expect_lines("-ensight a_d.dat",
               {"-ensight found, output name based on conversion.", "Output file is a text file",
                "WARNING - Ensight conversion not fully supported for .dat files."});
  expect_lines("-max A_V.DAT", {"SMS data type identified as: \"_v\"", "2dm filename: \"A.2dm\""});
  expect_lines("-max a_d.dat cells_d.dat",
               {"ERROR - Number nodes and/or cells in cells_d.dat not the same as in primary .dat "
                "file.",
                "   Found nodes 3, cells 2, expected nodes 3, cells 1 as in \"a_d.dat\"",
                "Press Enter to Continue"});
  expect_lines("-max a_d.dat A_V.DAT",
               {"ERROR - A_V.DAT is not the same vector or scalar format as in primary .dat file.",
                "Press Enter to Continue"});
  expect_lines("-va a_d.dat", {"ERROR - .dat file or xmdf type must be vector data for -va option",
                               "Press Enter to Continue"});
  expect_lines("-ddur1 -t5 a_d.dat a_d.dat",
               {"Error - Difference in duration (-ddur) not yet implemented for xmdf files.",
                "    For .dat files, a previous version of the utility can be used.",
                "Press Enter to Close"});
  expect_lines("-max -t1 a_d.dat",
               {"ERROR - expecting two or more files when using -max or -min with a specified time "
                "(-t)"});
  expect_lines("-max -t3 a_d.dat a_d.dat",
               {"ERROR - Could not find specified timestep in .dat file.",
                "   \"a_d.dat\", asked for time 3, tolerance 0.0001", "Press Enter to Close"});
}

}  // namespace
}  // namespace quillet::testing
