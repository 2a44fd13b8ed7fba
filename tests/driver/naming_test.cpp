#include <gtest/gtest.h>

#include "dat_builder.h"
#include "driver/argument_parser.h"
#include "driver/operation_choice.h"
#include "driver/output_naming.h"
#include "driver/output_type.h"
#include "program_runner.h"
#include "support/file_names.h"

namespace quillet {
namespace {

struct Named {
  std::string arguments;
  std::string file;
  std::string group;
  std::string dataset;
};

// The naming of a run and what follows from the kinds of its files, silently.
OutputNaming naming_of(const std::vector<std::string>& arguments) {
  RunOptions options = PARSE_ARGUMENTS(arguments).options;
  ::testing::internal::CaptureStdout();
  const Operation operation = CHOOSE_OPERATION(options);
  OutputNaming naming = NAME_OUTPUT(operation, options);
  std::vector<FileKind> kinds;
  for (const std::string& input : options.inputs) {
    kinds.push_back(FILEEXT(input) == ".xmdf" ? FileKind::xmdf : FileKind::dat);
  }
  SETTLE_OUTPUT_TYPE(operation, options, kinds, naming);
  ::testing::internal::GetCapturedStdout();
  return naming;
}

class Naming : public ::testing::TestWithParam<Named> {};

TEST_P(Naming, OfFileGroupAndDataset) {
  const OutputNaming naming = naming_of(testing::WORDS(GetParam().arguments));
  EXPECT_EQ(naming.base_file_name, GetParam().file);
  EXPECT_EQ(naming.group_name, GetParam().group);
  EXPECT_EQ(naming.dataset_name, GetParam().dataset);
}

INSTANTIATE_TEST_SUITE_P(
    Operations, Naming,
    ::testing::Values(
        Named{"-r2.5 in/run_h.dat", "in/run_h(r2.5).dat", "Remove", ""},
        Named{"-k99999 run_h.dat", "run_h(k99999).dat", "Keep", "Keep run_h"},
        Named{"-k99999.1 in\\run_h.dat", "in\\run_h(k99999.1).dat", "Keep", "Keep run_h"},
        Named{"-con a_h.dat b_h.dat", "a_h(con).dat", "Concatenate", ""},
        Named{"-max in/a_h.dat b_h.dat", "in/a_h(maxmax).dat", "MaxMax", "Max Value"},
        Named{"-min a.b_h.dat", "a.b_h(minmin).dat", "MinMin", "Min Value"},
        Named{"-rangeA1 -rangeB2 in/a_h.dat", "in/a_h(range).dat", "Range", "Range in/a_h"},
        Named{"-rangeA1 -rangeB2 -typeh a.xmdf", "a(range).xmdf", "Range", "Water Level"},
        Named{"-dif in/a_h.dat in/b_h.dat", "a_h - b_h.dat", "Difference", "diff_a_h - b_h"},
        Named{"-dif a_h.dat b_h.dat out/c_h.dat", "out/c_h.dat", "Difference", "diff_a_h - b_h"},
        Named{"-ddur1 -t5 a_h.dat b_h.dat", "a_h - b_h.dat", "Duration Difference",
              "ddur_a_h - b_h"},
        Named{"-dur0.3 run_d.dat", "run_d(dur0.3).dat", "Duration", "dur0.3"},
        Named{"-trim2 run_v.dat", "run_v(trim2).dat", "Trim", "trim2"},
        Named{"-toi0.3 run_h.dat", "run_h(toi).dat", "Time to", "Time to Increase 0.3"},
        Named{"-times in/run_h.dat", "times.txt", "", ""}));

INSTANTIATE_TEST_SUITE_P(
    GivenNames, Naming,
    ::testing::Values(Named{"-max -out r a_h.dat", "r.dat", "MaxMax", "Max Value"},
                      Named{"-max -out r.DAT a_h.dat", "r.DAT", "MaxMax", "Max Value"},
                      Named{"-max -out r.1 a_h.dat", "r.1.dat", "MaxMax", "Max Value"},
                      Named{"-max -out out.d/r a_h.dat", "out.d/r.dat", "MaxMax", "Max Value"},
                      // Once marked as XMDF an output stays so.
                      Named{"-max -out r.xmdf a_h.dat", "r.xmdf", "MaxMax", "Max Value"},
                      Named{"-max -typeh -out r.dat a.xmdf", "r.dat.xmdf", "MaxMax", "Max Value"},
                      Named{"-max -typeh a.xmdf", "a(maxmax).xmdf", "MaxMax", "Max Value"},
                      Named{"-max -typeh a_h.dat b.xmdf", "a_h(maxmax).xmdf", "MaxMax",
                            "Max Value"},
                      Named{"-dif -out r a_h.dat b_h.dat", "r.dat", "Difference", "diff_a_h - b_h"},
                      Named{"-times -out r a_h.dat", "r.txt", "", ""},
                      Named{"-times -out r.txt a_h.dat", "r.txt", "", ""}));

TEST(ThirdName, OverridesAGivenOneAfterAWarning) {
  const testing::Workspace folder;
  for (const std::string name : {"a_d.dat", "b_d.dat"}) {
    folder.write(name, testing::DAT_FILE({1, 0}, "a", {{0, {}, {1}}}));
  }
  testing::LiveRun run(folder, {"-dif", "-nowetdry", "-out", "r", "a_d.dat", "b_d.dat", "c_d.dat"});
  ASSERT_TRUE(run.wait_for(
      "\n\nWARNING - More than two files specifed for -dif or -ddur option with -out option.\n"
      "Press Enter to Continue\n"));
  EXPECT_TRUE(run.keeps_waiting());
  const testing::RunResult result = run.finish();
  EXPECT_TRUE(result.has_line("Allocating arrays for processing 2 files."));
  EXPECT_TRUE(result.has_line("Output .dat File: c_d.dat"));
}

}  // namespace
}  // namespace quillet
