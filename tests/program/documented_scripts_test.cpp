// The blocks of shell commands on the first page and on those about scripts and scaling, each in an
// example model of its own.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "build_paths.h"
#include "program_runner.h"

namespace quillet::testing {
namespace {

std::vector<std::string> blocks_of(const std::string& page) {
  std::vector<std::string> blocks;
  std::ifstream file(page);
  bool is_inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line == "```sh") {
      blocks.emplace_back();
      is_inside = true;
    } else if (line == "```") {
      is_inside = false;
    } else if (is_inside) {
      blocks.back() += line + "\n";
    }
  }
  return blocks;
}

void expect_to_run(const std::vector<std::string>& blocks) {
  for (const std::string& block : blocks) {
    SCOPED_TRACE(block);
    const Workspace folder;
    const std::string there = "cd '" + folder.path().string() + "' && ";
    const std::string model = example_model_path + " --nodes 1000 . > /dev/null";
    ASSERT_EQ(std::system((there + model).c_str()), 0);
    const auto bin = std::filesystem::path(program_path).parent_path().string();
    folder.write("block.sh", "set -euo pipefail\nPATH='" + bin + "':$PATH\n" + block);
    EXPECT_EQ(std::system((there + "bash block.sh > console.txt 2>&1").c_str()), 0)
        << folder.read("console.txt");
    EXPECT_EQ(folder.read("console.txt").find("ERROR"), std::string::npos)
        << folder.read("console.txt");
    EXPECT_FALSE(folder.has("failed.txt"));
  }
}

TEST(DocumentedScripts, RunAsTheyStand) {
  const auto blocks = blocks_of(tests_folder + "/../docs/scripting.md");
  EXPECT_GT(blocks.size(), 8U);
  expect_to_run(blocks);
}

TEST(DocumentedStudies, RunAsTheyStand) {
  const auto blocks = blocks_of(tests_folder + "/../docs/scaling.md");
  EXPECT_EQ(blocks.size(), 2U);
  expect_to_run(blocks);
}

TEST(DocumentedFirstSteps, RunAsTheyStand) {
  const auto blocks = blocks_of(tests_folder + "/../docs/index.md");
  EXPECT_EQ(blocks.size(), 3U);
  expect_to_run(blocks);
}

}  // namespace
}  // namespace quillet::testing
