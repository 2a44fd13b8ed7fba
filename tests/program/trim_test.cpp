// -trim on small files: every byte of the output and of the console, worked out by hand.
#include <limits>

#include "program/file_runs.h"
#include "program/set_up_text.h"

namespace quillet::testing {
namespace {

constexpr DatShape scalars{4, 2};
constexpr DatShape vectors{3, 2, true};
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();

const DatTime first{1, {1, -1}, {5, -7, 2, 1.999F}};
const DatTime second{2, {}, {nan, 0, -0.0F, inf}};
const DatTime stored{99999, {0, 2}, {1, 2, 3, 4}};
const DatTime second_trimmed{2, {1, -1}, {2, 0, -0.0F, 2}};
const DatTime stored_trimmed{99999, {0, 2}, {1, 2, 2, 2}};
const Files scalar_file{{"in.v2_d.dat", DAT_FILE(scalars, "data", {first, second, stored})}};
const Files vector_file{{"in_V.dat", DAT_FILE(vectors, "data",
                                              {{-1, {1, 0}, {3, 4, 1, 1, 0, -2}},
                                               {0.5F, {0, 1}, {-6, 8, 0, 0, 1.5F, -1.5F}}})}};
const float root_4_5 = 2.12132034F;

std::string trimmed(const std::vector<DatTime>& times, const std::string& name = "trim2") {
  return DAT_FILE(scalars, name, times);
}

INSTANTIATE_TEST_SUITE_P(
    Trims, FileRuns,
    ::testing::Values(
        FileRun("values that are not less take the limit; statuses stay, those not stated are "
                "those before",
                "-trim2 in.v2_d.dat", scalar_file)
            .gives(trimmed({{1, {1, -1}, {2, -7, 2, 1.999F}}, second_trimmed, stored_trimmed}),
                   "in.v2_d(trim2).dat"),
        FileRun("the name in the header ends before its last dot", "-trim1.5 -t99999 in.v2_d.dat",
                scalar_file)
            .gives(trimmed({{99999, {0, 2}, {1, 1.5F, 1.5F, 1.5F}}}, "trim1"),
                   "in.v2_d(trim1.5).dat"),
        FileRun("vectors are shortened, their direction kept", "-trim2 in_V.dat", vector_file)
            .gives(DAT_FILE(vectors, "trim2",
                            {{111111, {1, 0}, {1.2F, 1.6F, 1, 1, 0, -2}},
                             {0.5F, {0, 1}, {-1.2F, 1.6F, 0, 0, 3 / root_4_5, -3 / root_4_5}}}),
                   "in_V(trim2).dat")
            .says("WARNING - Negative times are written as 111111 in .dat files."),
        FileRun("maps of sources and times are no results", "-trim2 max.dat",
                {{"max.dat",
                  DAT_FILE(scalars, "Max",
                           {{111111, {1, 1}, {5, 0, 1, 2}}, {222222, {1, 1}, {3, 0, 1, 2}}})}})
            .gives(trimmed({{111111, {1, 1}, {2, 0, 1, 2}}}), "max(trim2).dat")
            .says("Skipping marker time, time found: 222222"),
        FileRun("unless they are asked for", "-trim2 -t222222 max.dat",
                {{"max.dat", DAT_FILE(scalars, "Max", {{222222, {1, 1}, {3, 0, 1, 2}}})}})
            .gives(trimmed({{222222, {1, 1}, {2, 0, 1, 2}}}), "max(trim2).dat")
            .never_says("Skipping"),
        FileRun("a file without output times", "-trim-1 in_V.dat",
                {{"in_V.dat", DAT_FILE(vectors, "data", {})}})
            .gives(DAT_FILE(vectors, "trim-1", {}), "in_V(trim-1).dat")),
    NameOfCase{});

TEST(TrimConsole, FromStartToEnd) {
  const Workspace folder;
  folder.write("in_d.dat", DAT_FILE(scalars, "data", {first, second}));
  const std::string output = "in_d(trim2).dat";
  const std::string set_up =
      SET_UP({"-trim (trim)", {{"in_d.dat", "_d", "in.2dm"}}, scalars, output});
  const std::string end = std::string("\nClosing files and exiting\n\n") + closing_text;
  EXPECT_EQ(RUN(folder, WORDS("-trim2 in_d.dat")).output,
            set_up + "\nTrimming values at all times.\n" + READ_TEXT("1.000") +
                FIRST_WRITE_TEXT(output) + READ_TEXT("2.000", true) + WRITE_TEXT(output) + end +
                end_text);
  EXPECT_TRUE(
      RUN(folder, WORDS("-trim2 -b -t1 in_d.dat")).has_line("Trimming values at time at 1"));
}

}  // namespace
}  // namespace quillet::testing
