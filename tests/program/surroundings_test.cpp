// What surrounds a run: closed handles, other runs, interrupts.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "program/writing_runs.h"
#include "same_results.h"

namespace quillet::testing {
namespace {

namespace fs = std::filesystem;

class Surroundings : public ::testing::TestWithParam<WritingRun> {
 protected:
  Surroundings() { MAKE_INPUTS_OF_WRITING_RUNS(folder); }

  Workspace folder;
};

// The files of a run must not get the places of closed handles, where console lines go.
TEST_P(Surroundings, ClosedHandlesChangeNoByteOfTheOutputs) {
  RUN_WRITING(folder, GetParam());
  ASSERT_TRUE(folder.has(GetParam().output));
  const Workspace closed;
  MAKE_INPUTS_OF_WRITING_RUNS(closed);
  RunSettings settings;
  settings.has_input = false;
  settings.has_output = false;
  EXPECT_TRUE(RUN_WRITING(closed, GetParam(), settings).ended_well());
  ASSERT_EQ(closed.names(), folder.names());
  for (const std::string& name : folder.names()) {
    if (name == "x.xmdf") continue;  // an input whose bytes hold the time of its making
    EXPECT_TRUE(SAME_RESULTS(closed.read(name), folder.read(name))) << name;
  }
}

class OutputsOfOtherRuns : public Surroundings {};

TEST_P(OutputsOfOtherRuns, AreLeftAlone) {
  const std::string& output = GetParam().output;
  folder.write(output, "an earlier result");
  folder.write(output + ".part", "what the other run has written so far");
  const int other = ::open(folder.path(output + ".part").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_EQ(::flock(other, LOCK_EX), 0);
  const auto before = folder.names();
  const RunResult run = RUN_WRITING(folder, GetParam());
  EXPECT_NE(run.output.find("\n\nERROR - Output file is being written by another run: \"" + output +
                            "\"\n\nPress Enter to Close\n"),
            std::string::npos)
      << run.output;
  EXPECT_EQ(folder.names(), before);
  EXPECT_EQ(folder.read(output), "an earlier result");
  EXPECT_EQ(folder.read(output + ".part"), "what the other run has written so far");
  ::close(other);
  EXPECT_FALSE(RUN_WRITING(folder, GetParam()).output.find("ERROR") != std::string::npos);
  EXPECT_NE(folder.read(output), "an earlier result");
}

INSTANTIATE_TEST_SUITE_P(Units, OutputsOfOtherRuns, ::testing::ValuesIn(runs_written_to_units),
                         NAME_OF_WRITING_RUN);
INSTANTIATE_TEST_SUITE_P(FileSets, OutputsOfOtherRuns,
                         ::testing::ValuesIn(runs_written_to_file_sets), NAME_OF_WRITING_RUN);
INSTANTIATE_TEST_SUITE_P(All, Surroundings, ::testing::ValuesIn(ALL_WRITING_RUNS()),
                         NAME_OF_WRITING_RUN);

// The first run waits for its mesh while its output is open.
TEST(TwoRunsWithOneOutput, LeaveTheFirstOnesResult) {
  for (const std::string output : {"r.dat", "r.xmdf"}) {
    const Workspace folder;
    const std::string levels = DAT_FILE({2, 1}, "h", {{0, {1}, {5, 6}}, {1, {1}, {0, 0}}});
    folder.write("a_h.dat", levels);
    folder.write("b_d.dat", DAT_FILE({2, 1}, "d", {{0, {1}, {1, 2}}, {1, {1}, {0, 0}}}));
    LiveRun first(folder, {"-max", "-b", "a_h.dat", "-2dm", "late.2dm", "-out", output});
    ASSERT_TRUE(first.wait_for("Press Enter to try again\n"));
    const RunResult second = RUN(folder, {"-max", "-b", "b_d.dat", "-out", output});
    EXPECT_TRUE(
        second.has_line("ERROR - Output file is being written by another run: \"" + output + "\""))
        << second.output;
    EXPECT_FALSE(folder.has(output));
    folder.write("late.2dm", "MESH2D\nE3T 1 1 2 1 1\nND 1 0 0 0\nND 2 1 0 0\n");
    first.type("\n");
    EXPECT_TRUE(first.ends_by_itself());
    EXPECT_TRUE(first.finish().has_line("Finished."));
    EXPECT_TRUE(folder.has(output));
    if (output == "r.dat") {
      EXPECT_TRUE(SAME_RESULTS(
          folder.read(output),
          DAT_FILE({2, 1}, "Max Value",
                   {{111111, {1}, {5, 6}}, {222222, {1}, {1, 1}}, {333333, {1}, {0, 0}}})));
    }
  }
}

// A terminal's Ctrl-C, a batch system's end of a job: the output that has not begun goes, and a
// shell's loop sees that the run was interrupted.
TEST(Interrupts, EndARunThatWaits) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    const Workspace folder;
    folder.write("a_h.dat", DAT_FILE({2, 1}, "h", {{0, {1}, {5, 6}}}));
    for (const std::string output : {"r.dat", "r.xmdf"}) {
      LiveRun run(folder, {"-max", "a_h.dat", "-2dm", "missing.2dm", "-out", output});
      ASSERT_TRUE(run.wait_for("Press Enter to try again\n"));
      EXPECT_TRUE(folder.has(output + ".part"));
      run.send(signal);
      EXPECT_TRUE(run.ends_by_itself());
      const RunResult result = run.finish();
      EXPECT_EQ(result.signal, signal);
      EXPECT_TRUE(result.has_line("ERROR - Interrupted.")) << result.output;
      EXPECT_EQ(folder.names(), (std::vector<std::string>{"a_h.dat"}));
    }
  }
}

}  // namespace
}  // namespace quillet::testing
