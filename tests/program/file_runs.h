// Runs on small files with every byte of the output worked out by hand.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "case_names.h"
#include "dat_builder.h"
#include "program_runner.h"
#include "same_results.h"

namespace quillet::testing {

using Files = std::map<std::string, std::string>;

inline Files WITH(Files files, const Files& others) {
  for (const auto& [name, bytes] : others) files[name] = bytes;
  return files;
}

class FileRun {
 public:
  FileRun(std::string test_name, std::string run_arguments, Files input_files)
      : name(std::move(test_name)),
        arguments(std::move(run_arguments)),
        files(std::move(input_files)) {}

  // Without an output the run must leave nothing behind.
  FileRun& gives(const std::string& bytes, const std::string& file = "out.dat") {
    output = file;
    expected = bytes;
    return *this;
  }
  FileRun& says(const std::string& line) {
    lines.push_back(line);
    return *this;
  }
  FileRun& never_says(const std::string& start) {
    absent_starts.push_back(start);
    return *this;
  }

  // Inputs must stay as they are, and nothing but the output may come.
  void check() const {
    SCOPED_TRACE(name);
    const Workspace folder;
    for (const auto& [file, bytes] : files) folder.write(file, bytes);
    std::vector<std::string> names = folder.names();
    const RunResult run = RUN(folder, WORDS("-b " + arguments));
    for (const auto& [file, bytes] : files)
      EXPECT_TRUE(SAME_RESULTS(folder.read(file), bytes)) << file;
    if (!output.empty()) {
      EXPECT_TRUE(SAME_RESULTS(folder.read(output), expected)) << run.output;
      names.insert(std::lower_bound(names.begin(), names.end(), output), output);
    }
    EXPECT_EQ(folder.names(), names);
    for (const std::string& line : lines) EXPECT_TRUE(run.has_line(line)) << line << run.output;
    for (const auto& start : absent_starts) EXPECT_EQ(run.count_lines_with(start), 0) << start;
    EXPECT_TRUE(run.ended_well());
  }

  std::string name;

 private:
  std::string arguments;
  Files files;
  std::string output, expected;
  std::vector<std::string> lines, absent_starts;
};

// The one test, in file_runs.cpp, instantiated by every file with such runs.
class FileRuns : public ::testing::TestWithParam<FileRun> {};

}  // namespace quillet::testing
