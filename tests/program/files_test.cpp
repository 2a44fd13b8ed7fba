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

TEST(Outputs, ReplaceEarlierOnesWhenComplete) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  folder.write("r.dat", "an earlier result");
  folder.write("r.dat.part", std::string(5000, 'x'));
  EXPECT_TRUE(RUN(folder, {"-max", "a_d.dat", "-out", "r.dat"}).has_line("Finished."));
  EXPECT_TRUE(folder.read("r.dat") == expected);
  EXPECT_EQ(folder.names(), (Names{"a_d.dat", "r.dat"}));
}

TEST(Outputs, OfFailedRunsLeaveEarlierOnesAlone) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  folder.write("b_d.dat", input.substr(0, input.size() - 6));
  folder.write("r.dat", "an earlier result");
  const RunResult run = RUN(folder, {"-max", "a_d.dat", "b_d.dat", "-out", "r.dat"});
  EXPECT_TRUE(
      run.has_line("ERROR - Reading file \"b_d.dat\": expected 8 bytes of node values, found 6"));
  EXPECT_EQ(folder.read("r.dat"), "an earlier result");
  EXPECT_EQ(folder.names(), (Names{"a_d.dat", "b_d.dat", "r.dat"}));
  EXPECT_TRUE(run.ended_well());
}

// A file-size limit stands for a full disk: on the first piece, between pieces, on the end card.
struct FullDisk {
  std::int32_t nodes;
  rlim_t room;
};
class FullDisks : public ::testing::TestWithParam<FullDisk> {};

TEST_P(FullDisks, EndTheRunAndLeaveThePart) {
  const auto [nodes, room] = GetParam();
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

INSTANTIATE_TEST_SUITE_P(All, FullDisks,
                         ::testing::Values(FullDisk{5000, 30000},
                                           FullDisk{5000, 92 + 3 * 20009 + 3},
                                           FullDisk{300000, 1 << 20},
                                           FullDisk{300000, 92 + 3 * 1200009 + 1}));

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

struct Unopened {
  Names arguments;
  std::string name;
};
class UnopenedFiles : public ::testing::TestWithParam<Unopened> {};

TEST_P(UnopenedFiles, EndTheRunWhenNobodyAnswers) {
  const Workspace folder;
  folder.write("a_d.dat", input);
  fs::create_directories(folder.path("folder_d.dat"));
  fs::create_directories(folder.path("r.dat.part"));
  const Names before = folder.names();
  const RunResult run = RUN(folder, GetParam().arguments);
  const std::string end = could_not_open(GetParam().name) + "\nPress Enter to Close\n";
  ASSERT_GT(run.output.size(), end.size());
  EXPECT_EQ(run.output.substr(run.output.size() - end.size()), end);
  EXPECT_EQ(folder.names(), before);
  EXPECT_TRUE(run.ended_well());
}

INSTANTIATE_TEST_SUITE_P(
    All, UnopenedFiles,
    ::testing::Values(Unopened{{"-max", "-b", "missing_d.dat"}, "missing_d.dat"},
                      Unopened{{"-max", "a_d.dat", "missing_d.dat"}, "missing_d.dat"},
                      Unopened{{"-max", "folder_d.dat"}, "folder_d.dat"},
                      Unopened{{"-max", "a_d.dat/x_d.dat"}, "a_d.dat/x_d.dat"},
                      Unopened{{"-max", "a_d.dat", "-out", "missing/r.dat"}, "missing/r.dat"},
                      Unopened{{"-max", "a_d.dat", "-out", "folder_d.dat"}, "folder_d.dat"},
                      Unopened{{"-max", "a_d.dat", "-out", "r.dat"}, "r.dat"}));

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
