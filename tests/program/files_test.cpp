// What becomes of files: results are complete or absent, inputs are never harmed, what cannot be
// opened is asked for again.
#include <gtest/gtest.h>

#include <filesystem>

#include "dat_builder.h"
#include "program_runner.h"

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
                                           "link.dat", "hard.dat", "mesh.dat", "a_h.dat", "r.dat"));

const std::string try_again = "Press Enter to try again\n";

std::string could_not_open(const std::string& name) {
  return "\nERROR - Could not open file: \"" + name + "\"\n" + try_again;
}

TEST(UnopenedFiles, EndTheRunWhenNobodyAnswers) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  fs::create_directories(folder.path("folder_d.dat"));
  fs::create_directories(folder.path("r.dat.part"));
  const Names before = folder.names();
  for (const std::string arguments :
       {"-max -b missing_d.dat", "-max a_d.dat missing_d.dat", "-max folder_d.dat",
        "-max a_d.dat/x_d.dat", "-max a_d.dat -out missing/r.dat", "-max a_d.dat -out folder_d.dat",
        "-max a_d.dat -out r.dat"}) {
    const RunResult run = RUN(folder, WORDS(arguments));
    const std::string end = could_not_open(WORDS(arguments).back()) + "\nPress Enter to Close\n";
    ASSERT_GT(run.output.size(), end.size());
    EXPECT_EQ(run.output.substr(run.output.size() - end.size()), end);
    EXPECT_EQ(folder.names(), before);
    EXPECT_TRUE(run.ended_well());
  }
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
  EXPECT_TRUE(folder.read("out/r.dat") == expected);
}

}  // namespace
}  // namespace quillet::testing
