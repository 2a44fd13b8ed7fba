// Every system call of every operation that writes fails once: the run ends with an error line and
// without a final name, or its output is complete.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <map>

#include "program/writing_runs.h"

namespace quillet::testing {
namespace {

struct FailingCall {
  std::string name;
  int error = 0;
  int step = 1;  // calls that are made by the thousand are tried one in so many
};

const std::vector<FailingCall> failing_calls{
    {"write", ENOSPC},  {"write", EIO},        {"pwrite", ENOSPC}, {"pwrite", EIO},
    {"close", EIO},     {"close", ENOSPC},     {"rename", EACCES}, {"open", EMFILE},
    {"ftruncate", EIO}, {"fallocate", ENOSPC}, {"read", EIO},      {"pread", EIO}};

// HDF5 itself crashes without memory.
const FailingCall failing_allocation{"malloc", ENOMEM, 97};

bool uses_hdf5(const WritingRun& run) {
  return (run.arguments + run.output).find(".xmdf") != std::string::npos;
}

// What a report cannot read it leaves out, with an error line.
bool may_be_incomplete(const WritingRun& run) {
  return run.name == "Xnfo";
}

using Files = std::map<std::string, std::string>;

class Faults : public ::testing::TestWithParam<WritingRun> {
 protected:
  static constexpr int most_calls = 100000;

  // The bytes of every file that a run without faults writes.
  Files complete_files() const {
    const Workspace folder;
    MAKE_INPUTS_OF_WRITING_RUNS(folder);
    const std::vector<std::string> inputs = folder.names();
    RUN_WRITING(folder, GetParam());
    Files files;
    for (const std::string& name : folder.names()) {
      const bool is_input = std::binary_search(inputs.begin(), inputs.end(), name);
      if (!is_input) files[name] = folder.read(name);
    }
    return files;
  }
};

TEST_P(Faults, LeaveACompleteOutputOrNone) {
  if (!can_inject_faults) GTEST_SKIP() << "no faults can be injected under the sanitizers";
  const Files complete = complete_files();
  std::vector<FailingCall> calls = failing_calls;
  if (!uses_hdf5(GetParam())) calls.push_back(failing_allocation);
  const Workspace marks;
  for (const FailingCall& call : calls) {
    bool took_place = true;
    for (int n = 1; took_place && n < most_calls; n += call.step) {
      SCOPED_TRACE(call.name + " number " + std::to_string(n) + ", errno " +
                   std::to_string(call.error));
      const Workspace folder;
      MAKE_INPUTS_OF_WRITING_RUNS(folder);
      const std::string mark = call.name + std::to_string(call.error) + "_" + std::to_string(n);
      const RunResult run = RUN_WRITING(
          folder, GetParam(), {.environment = FAULT(call.name, n, call.error, marks.path(mark))});
      took_place = marks.has(mark);
      EXPECT_TRUE(run.ended_well()) << run.output;
      const bool has_output = folder.has(GetParam().output);
      const bool says_error = run.output.find("ERROR") != std::string::npos;
      EXPECT_TRUE(has_output || says_error) << run.output;
      if (!has_output || (says_error && may_be_incomplete(GetParam()))) continue;
      for (const auto& [name, bytes] : complete) {
        EXPECT_TRUE(folder.has(name) && folder.read(name) == bytes) << name << run.output;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, Faults, ::testing::ValuesIn(ALL_WRITING_RUNS()), NAME_OF_WRITING_RUN);

}  // namespace
}  // namespace quillet::testing
