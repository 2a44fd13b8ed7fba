// The commands that the manual shows work on the example model as they stand there.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

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

// The commands in the page's blocks of shell lines, without the program's name.
std::vector<std::vector<std::string>> commands_of(const fs::path& page) {
  std::vector<std::vector<std::string>> commands;
  std::ifstream file(page);
  bool is_shell = false;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("```", 0) == 0) is_shell = line == "```sh";
    if (!is_shell || line.rfind("quillet ", 0) != 0) continue;
    commands.push_back(words_of(line.substr(8)));
  }
  return commands;
}

TEST(DocumentedExamples, RunWithoutErrors) {
  int pages = 0;
  for (const auto& page : fs::directory_iterator(QUILLET_TESTS "/../docs/operations")) {
    SCOPED_TRACE(page.path().filename().string());
    ++pages;
    const Workspace folder;
    const std::string model =
        std::string(QUILLET_EXAMPLE_MODEL) + " \"" + folder.path().string() + "\" > /dev/null";
    ASSERT_EQ(std::system(model.c_str()), 0);
    const auto commands = commands_of(page.path());
    EXPECT_FALSE(commands.empty());
    for (const auto& arguments : commands) {
      const RunResult run = RUN(folder, arguments);
      EXPECT_EQ(run.output.find("ERROR"), std::string::npos)
          << ::testing::PrintToString(arguments) << run.output;
      EXPECT_TRUE(run.ended_well());
    }
  }
  EXPECT_GE(pages, 4);
}

}  // namespace
}  // namespace quillet::testing
