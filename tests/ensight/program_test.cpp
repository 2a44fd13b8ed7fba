// -ensight as the user runs it.
#include <gtest/gtest.h>

#include "dat_builder.h"
#include "ensight/ensight_test_data.h"
#include "program_runner.h"

namespace quillet::testing {
namespace {

class EnsightProgram : public ::testing::Test {
 protected:
  void SetUp() override {
    folder.write("run.2dm", test::standard_mesh());
    folder.write("run_h.dat", DAT_FILE({.nodes = 6, .cells = 3}, "Water Level",
                                       {{0.5F, {1, 1, 1}, {1, 2, 3, 4, 5, 6}}}));
  }

  Workspace folder;
};

TEST_F(EnsightProgram, NamesTheDataSetAfterTheInputAndEndsNormally) {
  const RunResult result = RUN(folder, {"-ensight", "run_h.dat"});
  EXPECT_TRUE(result.ended_well());
  const auto lines = result.lines();
  ASSERT_GE(lines.size(), 3U);
  EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
            (std::vector<std::string>{"Finished.", "", "Press Enter to Close"}));
  EXPECT_EQ(folder.names(),
            (std::vector<std::string>{
                "run.2dm", "run_h.case", "run_h.dat", "run_h_Water_Level.0001", "run_h_binary.geo",
                "run_h_binary.geo.log", "run_h_text.geo", "run_h_text.geo.log"}));
}

TEST_F(EnsightProgram, WritesTheSameBytesAgainOverAnEarlierExport) {
  EXPECT_TRUE(RUN(folder, {"-b", "-ensight", "-out", "a b.case", "run_h.dat"}).ended_well());
  const std::string first = folder.read("a_b.case") + folder.read("a_b_text.geo");
  folder.write("a_b_text.geo", std::string(100000, 'x'));
  const RunResult again = RUN(folder, {"-b", "-ensight", "-out", "a b.case", "run_h.dat"});
  EXPECT_EQ(again.lines().back(), "Finished.");
  EXPECT_EQ(folder.read("a_b.case") + folder.read("a_b_text.geo"), first);
}

}  // namespace
}  // namespace quillet::testing
