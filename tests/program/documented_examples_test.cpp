// The commands that the manual and its page show work on the example model as they stand there.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "build_paths.h"
#include "program_runner.h"

namespace quillet::testing {
namespace {

namespace fs = std::filesystem;

// The words of a command line, double quotes keeping blanks together, up to a comment.
std::vector<std::string> words_of(const std::string& line) {
  std::vector<std::string> words;
  std::string word;
  bool is_quoted = false;
  for (const char c : line + ' ') {
    if (c == '"') {
      is_quoted = !is_quoted;
    } else if (is_quoted || c != ' ') {
      word += c;
    } else if (word == "#") {
      return words;
    } else if (!word.empty()) {
      words.push_back(std::exchange(word, ""));
    }
  }
  return words;
}

// The commands, without the program's name, between a line that starts a block and the next line
// with the same mark.
std::vector<std::vector<std::string>> commands_of(const fs::path& page, const std::string& mark,
                                                  const std::string& start) {
  std::vector<std::vector<std::string>> commands;
  std::ifstream file(page);
  bool is_inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind(mark, 0) == 0) is_inside = line == start;
    if (!is_inside || line.rfind("quillet ", 0) != 0) continue;
    for (auto at = line.find("\\-"); at != std::string::npos; at = line.find("\\-", at)) {
      line.erase(at, 1);  // as the manual page writes a hyphen
    }
    commands.push_back(words_of(line.substr(8)));
  }
  return commands;
}

// The points that the examples name.
std::string gauges() {
  std::ifstream file(tests_folder + "/../docs/operations/points.md");
  std::string rows;
  bool is_inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("```", 0) == 0) {
      is_inside = line == "```csv";
    } else if (is_inside) {
      rows += line + '\n';
    }
  }
  return rows;
}

// On a model of their own, one after another.
void expect_to_run(const std::vector<std::vector<std::string>>& commands, bool each_writes_anew) {
  const Workspace folder;
  const std::string model =
      example_model_path + " --nodes 1000 \"" + folder.path().string() + "\" > /dev/null";
  ASSERT_EQ(std::system(model.c_str()), 0);
  folder.write("gauges.csv", gauges());
  EXPECT_FALSE(commands.empty());
  for (const auto& arguments : commands) {
    const auto before = folder.names();
    const RunResult run = RUN(folder, arguments);
    EXPECT_TRUE(!each_writes_anew || folder.names() != before)
        << ::testing::PrintToString(arguments) << " writes nothing";
    EXPECT_EQ(run.output.find("ERROR"), std::string::npos)
        << ::testing::PrintToString(arguments) << run.output;
    EXPECT_TRUE(run.ended_well());
  }
}

TEST(ManualPageExamples, RunWithoutErrors) {
  const auto commands = commands_of(tests_folder + "/../docs/quillet.1", ".SH", ".SH EXAMPLES");
  EXPECT_GT(commands.size(), 10U);
  expect_to_run(commands, true);
}

TEST(DocumentedExamples, RunWithoutErrors) {
  int pages = 0;
  for (const auto& page : fs::directory_iterator(tests_folder + "/../docs/operations")) {
    SCOPED_TRACE(page.path().filename().string());
    ++pages;
    expect_to_run(commands_of(page.path(), "```", "```sh"), false);
  }
  EXPECT_GE(pages, 4);
}

TEST(DocumentedWorkflows, RunWithoutErrors) {
  const auto commands = commands_of(tests_folder + "/../docs/workflows.md", "```", "```sh");
  EXPECT_GT(commands.size(), 20U);
  expect_to_run(commands, true);
}

}  // namespace
}  // namespace quillet::testing
