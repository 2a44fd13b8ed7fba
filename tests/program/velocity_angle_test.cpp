// -va on small files: every byte of the output and of the console, worked out by hand.
#include "program/file_runs.h"
#include "program/set_up_text.h"

namespace quillet::testing {
namespace {

constexpr DatShape vectors{12, 3, true};
constexpr DatShape scalars{12, 3};

// Axes, diagonals, rest.
const std::vector<float> flow{0,  0.5F, 2,  0, -0.1F, 0, 0,     -3, 1, 1, 1, -1,
                              -1, -1,   -1, 1, 0,     0, -0.0F, -1, 3, 3, 0, 1e-9F};
const std::vector<float> degrees{0, 90, -90, 180, 45, 135, -135, -45, 0, -180, 45, 0};
const DatTime first{1, {1, 0, -1}, flow};
const DatTime second{2, {}, std::vector<float>(24, -4)};
const DatTime stored{99999, {0, 1, 2}, flow};
const DatTime second_angles{2, {1, 0, -1}, std::vector<float>(12, -135)};
const DatTime stored_angles{99999, {0, 1, 2}, degrees};
const Files input{{"in/run.v1_V.dat", DAT_FILE(vectors, "data", {first, second, stored})}};

std::string angles(const std::vector<DatTime>& times, const std::string& name = "run.v1_V_va") {
  return DAT_FILE(scalars, name, times);
}

INSTANTIATE_TEST_SUITE_P(
    Angles, FileRuns,
    ::testing::Values(
        FileRun("at all times, named after the input", "-va in/run.v1_V.dat", input)
            .gives(angles({{1, {1, 0, -1}, degrees}, second_angles, stored_angles}),
                   "in/run.v1_V_va.dat"),
        FileRun("at one time", "-va -t99999 in/run.v1_V.dat", input)
            .gives(angles({stored_angles}), "in/run.v1_V_va.dat"),
        FileRun("the numbers of the inputs beside a maximum have no direction", "-va max.dat",
                {{"max.dat",
                  DAT_FILE(vectors, "Max",
                           {{111111, {1, 0, -1}, flow}, {222222, {1, 0, -1}, degrees}})}})
            .gives(angles({{111111, {1, 0, -1}, degrees}}, "max_va"), "max_va.dat")
            .says("Skipping marker time, time found: 222222"),
        FileRun("stored minima are not stored maxima", "-va -t-99999 in/run.v1_V.dat", input)
            .says("ERROR - Could not find specified timestep in .dat file.")),
    NameOfCase{});

TEST(AngleConsole, FromStartToEnd) {
  const Workspace folder;
  folder.write("in_V.dat", DAT_FILE(vectors, "data", {first, stored}));
  const std::string output = "in_V_va.dat";
  const std::string set_up =
      SET_UP({"-va (velocity angle)", {{"in_V.dat", "_v", "in.2dm"}}, vectors}) +
      "Output .dat File: " + output + "\n";
  const std::string end = std::string("\nClosing files and exiting\n\n") + closing_text;
  EXPECT_EQ(RUN(folder, WORDS("-va in_V.dat")).output,
            set_up + "\nProcessing velocity angles at all times.\n" + READ_TEXT("1.000") +
                FIRST_WRITE_TEXT(output) + READ_TEXT("99999.000", true) + WRITE_TEXT(output) + end +
                end_text);
  EXPECT_TRUE(
      RUN(folder, WORDS("-va -b -t1 in_V.dat")).has_line("Processing velocity angle at time at 1"));
}

}  // namespace
}  // namespace quillet::testing
