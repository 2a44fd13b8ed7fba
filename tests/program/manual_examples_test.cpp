// The examples of the manual page, line by line, on the example model.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "program_runner.h"

namespace quillet::testing {
namespace {

// The command lines of the section, as a reader sees them.
std::vector<std::string> examples() {
  std::ifstream page(QUILLET_TESTS "/../docs/quillet.1");
  std::vector<std::string> found;
  bool in_section = false;
  for (std::string line; std::getline(page, line);) {
    if (line.compare(0, 3, ".SH") == 0) in_section = line == ".SH EXAMPLES";
    if (!in_section || line.compare(0, 8, "quillet ") != 0) continue;
    for (auto at = line.find("\\-"); at != std::string::npos; at = line.find("\\-", at)) {
      line.erase(at, 1);
    }
    found.push_back(line);
  }
  return found;
}

TEST(ManualExamples, RunOnTheExampleModel) {
  const Workspace folder;
  const std::string model = QUILLET_EXAMPLE_MODEL " --nodes 1000 " + folder.path().string();
  ASSERT_EQ(std::system((model + " >/dev/null").c_str()), 0);
  const auto lines = examples();
  EXPECT_GT(lines.size(), 10U);
  for (const std::string& line : lines) {
    std::vector<std::string> arguments = WORDS(line);
    arguments.erase(arguments.begin());
    const auto before = folder.names();
    const RunResult run = RUN(folder, arguments);
    EXPECT_EQ(run.count_lines_with("ERROR"), 0) << line << run.output;
    EXPECT_NE(folder.names(), before) << line << " writes nothing";
    EXPECT_TRUE(run.ended_well()) << line;
  }
}

}  // namespace
}  // namespace quillet::testing
