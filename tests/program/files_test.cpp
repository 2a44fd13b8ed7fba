// What becomes of files: results are complete or absent, inputs are never harmed, what cannot be
// opened is asked for again.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

#include "case_names.h"
#include "program/writing_runs.h"
#include "same_results.h"

namespace quillet::testing {
namespace {

namespace fs = std::filesystem;

const DatShape shape{2, 1};
const std::string input = DAT_FILE(shape, "a", {{0, {1}, {5, -1}}, {1, {1}, {9, 9}}});
const std::string expected = DAT_FILE(
    shape, "Max Value", {{111111, {1}, {5, 0}}, {222222, {1}, {1, 0}}, {333333, {1}, {0, 0}}});

using Names = std::vector<std::string>;

// A file-size limit stands for a full disk: on the first piece, between pieces, on the end card.
TEST(FullDisks, EndTheRunAndLeaveThePart) {
  for (const auto& [nodes, room] :
       std::vector<std::pair<int, rlim_t>>{{5000, 30000},
                                           {5000, 92 + 3 * 20009 + 3},
                                           {300000, 1 << 20},
                                           {300000, 92 + 3 * 1200009 + 1}}) {
    const Workspace folder;
    const std::vector<float> values(static_cast<std::size_t>(nodes), 1);
    folder.write("a_d.dat", DAT_FILE({nodes, 0}, "a", {{0, {}, values}, {1, {}, values}}));
    folder.write("r.dat", "an earlier result");
    const RunResult run = RUN(folder, {"-max", "a_d.dat", "-out", "r.dat"}, {.largest_file = room});
    EXPECT_TRUE(run.has_line("ERROR - Writing file \"r.dat\": File too large"));
    EXPECT_FALSE(run.has_line("Finished."));
    EXPECT_EQ(folder.read("r.dat"), "an earlier result");
    EXPECT_EQ(fs::file_size(folder.path("r.dat.part")), room);
    EXPECT_TRUE(run.ended_well());
  }
}

class InputsAsOutputs : public ::testing::TestWithParam<std::string> {};

TEST_P(InputsAsOutputs, AreRefused) {
  const Workspace folder;
  for (const std::string name : {"a_v.dat", "in/b_v.dat", "a.2dm", "a_h.dat"}) {
    folder.write(name, input);
  }
  fs::create_symlink("a_v.dat", folder.path("link.dat"));
  fs::create_symlink("a.2dm", folder.path("mesh.dat"));
  fs::create_hard_link(folder.path("in/b_v.dat"), folder.path("hard.dat"));
  fs::create_hard_link(folder.path("a_v.dat"), folder.path("r.dat.part"));
  const Names before = folder.names();
  const RunResult run = RUN(folder, {"-max", "a_v.dat", "in/b_v.dat", "-out", GetParam()});
  EXPECT_NE(run.output.find("\n\nERROR - Output file is also an input file: \"" + GetParam() +
                            "\"\n\nPress Enter to Close\n"),
            std::string::npos)
      << run.output;
  EXPECT_EQ(folder.names(), before);
  for (const std::string& name : before) {
    EXPECT_TRUE(name == "in" || folder.read(name) == input) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(All, InputsAsOutputs,
                         ::testing::Values("a_v.dat", "./a_v.dat", "in/../a_v.dat", "in/b_v.dat",
                                           "link.dat", "hard.dat", "mesh.dat", "a_h.dat", "r.dat"),
                         NameOfCase{});

class Outputs : public ::testing::TestWithParam<WritingRun> {
 protected:
  Outputs() { MAKE_INPUTS_OF_WRITING_RUNS(folder); }
  void expect_failure(const std::string& line, const RunSettings& settings = {}) const {
    const RunResult run = RUN_WRITING(folder, GetParam(), settings);
    EXPECT_NE(run.output.find("\n\nERROR - " + line + "\n\nPress Enter to Close\n"),
              std::string::npos)
        << run.output;
    EXPECT_TRUE(run.ended_well());
  }

  Workspace folder;
  const std::string output = GetParam().output;
};

class OutputsAtInputs : public Outputs {};
TEST_P(OutputsAtInputs, AreRefused) {
  const std::string last = WORDS(GetParam().arguments).back(), whole = folder.read(last);
  fs::create_hard_link(folder.path(last), folder.path(output));
  const Names before = folder.names();
  expect_failure("Output file is also an input file: \"" + output + "\"");
  EXPECT_EQ(folder.names(), before);
  EXPECT_TRUE(SAME_RESULTS(folder.read(last), whole));
}

class OutputsOnFullDisks : public Outputs {};
TEST_P(OutputsOnFullDisks, LeaveTheEarlierResult) {
  if (!can_inject_faults) GTEST_SKIP() << "no faults can be injected under the sanitizers";
  folder.write(output, "an earlier result");
  expect_failure("Writing file \"" + output + "\": No space left on device",
                 {.environment = FAULT("write", 1, ENOSPC)});
  EXPECT_EQ(folder.read(output), "an earlier result");
  EXPECT_FALSE(folder.has(output + ".part"));  // not a byte was written
}

INSTANTIATE_TEST_SUITE_P(All, OutputsAtInputs, ::testing::ValuesIn(ALL_WRITING_RUNS()),
                         NAME_OF_WRITING_RUN);
INSTANTIATE_TEST_SUITE_P(All, OutputsOnFullDisks, ::testing::ValuesIn(runs_written_to_units),
                         NAME_OF_WRITING_RUN);

using OutputRuns = std::vector<std::pair<std::string, std::string>>;

// Without -out. Differences and lists of times go to the current folder, all else stands beside the
// input.
TEST(OutputNames, FollowFromTheInputs) {
  const Workspace folder;
  const DatShape vectors{2, 1, true};
  const std::vector<DatTime> times{{1, {1}, {5, -1, 0, 1}}};
  folder.write("in/run_V.dat", DAT_FILE(vectors, "v", times));
  MAKE_XMDF(folder, "in/run.xmdf", {{"r/Temporal/Vector Velocity", vectors, times}});
  const Names inputs = folder.names();
  const auto expect = [&](const std::string& arguments, const std::string& name) {
    const RunResult run = RUN(folder, WORDS("-b " + arguments));
    EXPECT_TRUE(folder.has(name)) << name << run.output;
    fs::remove(folder.path(name));
    EXPECT_EQ(folder.names(), inputs) << arguments;
  };
  const std::string dat = " in/run_V.dat", xmdf = " -typeV in/run.xmdf";
  for (const auto& [operation, suffix] : OutputRuns{{"-max", "(maxmax)"},
                                                    {"-min", "(minmin)"},
                                                    {"-k1", "(k1)"},
                                                    {"-r2.50", "(r2.5)"},
                                                    {"-rangeA0 -rangeB1", "(range)"},
                                                    {"-dur0.30", "(dur0.30)"},
                                                    {"-toi2", "(toi)"},
                                                    {"-Trim2", "(Trim2)"}}) {
    expect(operation + dat, "in/run_V" + suffix + ".dat");
    expect(operation + xmdf, "in/run" + suffix + ".xmdf");
  }
  expect("-con" + dat + dat, "in/run_V(con).dat");
  expect("-con" + dat + xmdf, "in/run_V(con).xmdf");
  expect("-con" + xmdf + dat, "in/run(con).xmdf");
  expect("-dif -nowetdry" + dat + dat, "run_V - run_V.dat");
  expect("-dif -nowetdry" + dat + xmdf, "run_V - run.xmdf");
  expect("-dif -nowetdry" + xmdf + xmdf + " in/third.dat", "in/third.xmdf");
  expect("-va" + dat, "in/run_V_va.dat");
  expect("-va" + xmdf, "in/run_V_va.xmdf");
  expect("-times" + dat, "times.txt");
  expect("-times" + xmdf, "times.txt");
  expect("-xnfo" + xmdf, "in/run.xmdf_xmdf_info.txt");
  expect("-conv" + dat, "in/run_V.xmdf");
  expect("-conv" + xmdf, "in/run_v.dat");
}

const std::string try_again = "Press Enter to try again\n";

const std::string missing = "No such file or directory";

std::string could_not_open(const std::string& name, const std::string& reason = missing) {
  return "\nERROR - Could not open file: \"" + name + "\"\n   " + reason + "\n" + try_again;
}

TEST(UnopenedFiles, EndTheRunWhenNobodyAnswers) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  fs::create_directories(folder.path("folder_d.dat"));
  fs::create_directories(folder.path("r.dat.part"));
  fs::create_symlink("elsewhere", folder.path("s.dat.part"));
  ASSERT_EQ(::mkfifo(folder.path("fifo_d.dat").c_str(), 0600), 0);
  ASSERT_EQ(::mkfifo(folder.path("f.dat.part").c_str(), 0600), 0);
  const Names before = folder.names();
  const std::string is_folder = "Is a directory";
  for (const auto& [arguments, reason] : std::vector<std::pair<std::string, std::string>>{
           {"-max -b missing_d.dat", missing},
           {"-max a_d.dat missing_d.dat", missing},
           {"-max folder_d.dat", is_folder},
           {"-max a_d.dat/x_d.dat", "Not a directory"},
           {"-max fifo_d.dat", "Not a regular file"},
           {"-max a_d.dat -out missing/r.dat", missing},
           {"-max a_d.dat -out folder_d.dat", is_folder},
           {"-max a_d.dat -out fifo_d.dat", "Not a regular file"},
           {"-max a_d.dat -out r.dat", is_folder},
           {"-max a_d.dat -out s.dat", "Too many levels of symbolic links"},
           {"-max a_d.dat -out f.dat", "Not a regular file"}}) {
    const RunResult run = RUN(folder, WORDS(arguments));
    const std::string end =
        could_not_open(WORDS(arguments).back(), reason) + "\nPress Enter to Close\n";
    ASSERT_GT(run.output.size(), end.size());
    EXPECT_EQ(run.output.substr(run.output.size() - end.size()), end);
    EXPECT_EQ(folder.names(), before);
    EXPECT_TRUE(run.ended_well());
  }
  EXPECT_TRUE(SAME_RESULTS(folder.read("a_d.dat"), input));
}

TEST(UnopenedFiles, LeadToThoseWithLikeNames) {
  const Workspace folder;
  for (const char* name : {"run1_d.dat", "run2_d.dat", "run12_h.dat", "in/Run3_V.DAT", "in/run.2dm",
                           "in/a_d.dat", "in/run4.xmdf"}) {
    folder.write(name, input);
  }
  fs::create_directories(folder.path("run5_V.dat"));
  for (const auto& [name, question] : std::vector<std::pair<std::string, std::string>>{
           {"rnu1_d.dat", "Did you mean \"run1_d.dat\"?"},
           {"run3_d.dat", "Did you mean \"run1_d.dat\" or \"run2_d.dat\"?"},
           {"run1_h.dat", "Did you mean \"run12_h.dat\" or \"run1_d.dat\"?"},
           {"in/run3_v.dat", "Did you mean \"in/Run3_V.DAT\"?"},
           {"run4_V.dat", "Did you mean \"run1_d.dat\" or \"run2_d.dat\"?"},
           {"in/b_h.dat", ""},
           {"elsewhere/run1_d.dat", ""},
           {"another.dat", ""}}) {
    const RunResult run = RUN(folder, {"-b", "-max", name});
    const std::string help = question.empty() ? "" : "   " + question + "\n";
    EXPECT_NE(run.output.find("\nERROR - Could not open file: \"" + name + "\"\n   " + missing +
                              "\n" + help + "Press Enter to try again\n\nPress Enter to Close\n"),
              std::string::npos)
        << run.output;
  }
  const RunResult run = RUN(folder, WORDS("-b -max -typed in/run5.xmdf"));
  EXPECT_NE(
      run.output.find("\nERROR - Could not open XMDF file \"in/run5.xmdf\"\n   \"in/run5.xmdf\": " +
                      missing + "\n   Did you mean \"in/run4.xmdf\"?\n\nPress Enter to Close\n"),
      std::string::npos)
      << run.output;
}

TEST(UnopenedFiles, AreTriedAgainForAUserWhoPutsThemInPlace) {
  const Workspace folder;
  LiveRun run(folder, {"-max", "-b", "a_d.dat", "-out", "out/r.dat"});
  ASSERT_TRUE(run.wait_for(could_not_open("a_d.dat")));
  EXPECT_TRUE(run.keeps_waiting());
  run.type("not yet\n");
  ASSERT_TRUE(run.wait_for(could_not_open("a_d.dat") + could_not_open("a_d.dat")));
  folder.write("a_d.dat", input);
  run.type("\n");
  ASSERT_TRUE(run.wait_for(could_not_open("out/r.dat")));
  fs::create_directories(folder.path("out"));
  run.type("\n");
  EXPECT_TRUE(run.ends_by_itself());
  EXPECT_TRUE(run.finish().has_line("Finished."));
  EXPECT_TRUE(SAME_RESULTS(folder.read("out/r.dat"), expected));
}

// Without its first map the rest of a maximum of vectors begins with single values.
TEST(MixedOutputs, EndTheRun) {
  const Workspace folder;
  const DatShape vectors{2, 1, true};
  DatBuilder file = DAT_HEADER(vectors, "v");
  ADD_TIME(file, {111111, {1}, {1, 2, 3, 4}});
  ADD_TIME(file, {222222, {1}, {1, 1}});
  ADD_TIME(file, {5, {1}, {1, 2, 3, 4}});
  folder.write("a_V.dat", file.integer(210).build());
  for (const std::string output : {"r.dat", "r.xmdf"}) {
    const RunResult run = RUN(folder, WORDS("-b -r111111 a_V.dat -out " + output));
    EXPECT_TRUE(run.has_line("ERROR - Writing file \"" + output +
                             "\": expected one value per node, as at the output times before, "
                             "found vectors at time 5"))
        << run.output;
    EXPECT_FALSE(folder.has(output));
    EXPECT_TRUE(run.ended_well());
  }
}

}  // namespace
}  // namespace quillet::testing
