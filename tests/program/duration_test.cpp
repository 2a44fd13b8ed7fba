// -dur and -toi on small files: every byte of the output and of the console, worked out by hand.
#include <gtest/gtest.h>

#include "dat_builder.h"
#include "program/set_up_text.h"
#include "program_runner.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

using Times = std::vector<DatTime>;

constexpr DatShape shape{3, 3};
constexpr DatShape vectors{2, 1, true};

// Node 1 rises and falls, node 2 rises and stays, node 3 rests on 0.5. The stored maximum is none
// of the simulation.
const Times flood{{0, {1, 0, 0}, {0, 0, 0.5F}},
                  {1, {}, {1, 4, 0.5F}},
                  {3, {0, -1, 0}, {0, 4, 0.5F}},
                  {99999, {1, 1, 1}, {90, 90, 90}}};
const std::string skipped = "Skipping times above 99,998, time found: 99999";

struct Duration {
  std::string what;
  std::string arguments;
  std::string input;
  std::string expected;
  std::string line = skipped;
};
class Durations : public ::testing::TestWithParam<Duration> {};

TEST_P(Durations, AreWrittenByteByByte) {
  const Workspace folder;
  folder.write("a_d.dat", GetParam().input);
  const RunResult run = RUN(folder, WORDS("-b -out out.dat a_d.dat " + GetParam().arguments));
  EXPECT_TRUE(folder.read("out.dat") == GetParam().expected) << GetParam().what << run.output;
  EXPECT_FALSE(folder.has("out.dat.part"));
  EXPECT_TRUE(GetParam().line.empty() || run.has_line(GetParam().line)) << run.output;
  EXPECT_TRUE(run.ended_well());
}

std::string input(const Times& times) {
  return DAT_FILE(shape, "depth", times);
}
std::string output(const std::string& name, const std::vector<int>& status,
                   const std::vector<float>& values) {
  return DAT_FILE({shape.nodes, shape.cells}, name, {{0, status, values}});
}
const std::string no_times = "WARNING - No output times in \"a_d.dat\"";

// The name in a .dat header loses what follows its last point.
INSTANTIATE_TEST_SUITE_P(
    Scalars, Durations,
    ::testing::Values(
        Duration{"half of the rise, half of the fall; more than the cutoff, not the cutoff itself",
                 "-dur0.5", input(flood), output("dur0", {1, 1, 0}, {1.5F, 2.875F, 0})},
        Duration{"the cutoff is crossed early in a steep rise", "-dur0.25", input(flood),
                 output("dur0", {1, 1, 0}, {2.25F, 2.9375F, 3})},
        Duration{"time of increase over the first value", "-toi0.5", input(flood),
                 output("Time to Increase 0", {1, 1, 0}, {0.5F, 0.125F, -99999})},
        Duration{"never reached", "-toi4", input(flood),
                 output("Time to Increase 4", {1, 1, 0}, {-99999, -99999, -99999})},
        Duration{"the start is a time like others; a jump takes no time", "-toi1",
                 input({{-2, {1, 0, 0}, {5, 5, 5}},
                        {2, {}, {5, 7, 5}},
                        {2, {}, {8, 7, 5}},
                        {4, {}, {8, 7, 7}}}),
                 output("Time to Increase 1", {1, 0, 0}, {2, 0, 3}), ""},
        Duration{"times that repeat add nothing", "-dur6",
                 input({{1, {0, 0, 0}, {7, 7, 0}}, {1, {}, {7, 0, 7}}, {1.5F, {}, {7, 0, 7}}}),
                 output("dur6", {0, 0, 0}, {0.5F, 0, 0.5F}), ""},
        Duration{"a single output time lasts no time", "-dur0", input({{7, {1, 0, 1}, {1, 2, 3}}}),
                 output("dur0", {1, 0, 1}, {0, 0, 0}), ""},
        Duration{"stored values alone", "-toi1", input({flood.back()}),
                 output("Time to Increase 1", {0, 0, 0}, {-99999, -99999, -99999}), no_times},
        Duration{"no output times", "-dur1", input({}), output("dur1", {0, 0, 0}, {0, 0, 0}),
                 no_times}));

// Lengths 5, 0 and 13; 0 and 1. The results are scalars.
const std::string velocities =
    DAT_FILE(vectors, "velocity",
             {{0, {1}, {3, -4, 0, 0}}, {2, {1}, {0, 0, 0, 1}}, {4, {0}, {-5, 12, 0, 0}}});

INSTANTIATE_TEST_SUITE_P(
    Vectors, Durations,
    ::testing::Values(
        Duration{"by length", "-dur2.5", velocities,
                 DAT_FILE({2, 1}, "dur2", {{0, {1}, {1 + 2 * (13 - 2.5F) / 13, 0}}}), ""},
        Duration{"increase by length", "-toi0.5", velocities,
                 DAT_FILE({2, 1}, "Time to Increase 0", {{0, {1}, {2 + 2 * 5.5F / 13, 1}}}), ""}));

TEST(Durations, OfXmdfInputsStandInXmdfOutputs) {
  const Workspace folder;
  const DatShape mesh{2, 3};
  MAKE_XMDF(folder, "r.xmdf",
            {{"r/Temporal/Depth",
              mesh,
              {{0, {1, 0, 0}, {0, 0}}, {1, {0, 0, 0}, {1, 4}}, {3, {0, 0, 1}, {0, 4}}}},
             {"r/Maximums/Depth", mesh, {{99999, {1, 1, 1}, {90, 90}}}}});
  RUN(folder, WORDS("-dur0.5 -b -typed r.xmdf"));
  EXPECT_TRUE(DAT_FILE(mesh, "", READ_XMDF(folder, "r(dur0.5).xmdf", "Duration/Temporal/dur0.5")) ==
              DAT_FILE(mesh, "", {{0, {1, 0, 1}, {1.5F, 2.875F}}}));
}

TEST(Durations, NeedTimesThatRunForwards) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE({1, 0}, "d", {{1, {}, {1}}, {2.5F, {}, {2}}, {2, {}, {1}}}));
  for (const char* option : {"-dur1", "-toi1"}) {
    const RunResult run = RUN(folder, {option, "-b", "a_d.dat"});
    EXPECT_NE(run.output.find("\n\nERROR - Reading file \"a_d.dat\": expected an output time of "
                              "2.5 or later, found 2\n\nPress Enter to Close\n"),
              std::string::npos)
        << run.output;
  }
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a_d.dat"});
}

struct Console {
  std::string arguments, operation, output, announcement;
};
class DurationConsoles : public ::testing::TestWithParam<Console> {};

TEST_P(DurationConsoles, FromStartToEnd) {
  const Workspace folder;
  const DatShape one_node{1, 0};
  folder.write("a_d.dat",
               DAT_FILE(one_node, "data", {{0, {}, {1}}, {1, {}, {2}}, {99999, {}, {2}}}));
  const auto& [arguments, operation, output, announcement] = GetParam();
  EXPECT_EQ(RUN(folder, WORDS(arguments)).output,
            SET_UP({operation, {{"a_d.dat", "_d", "a.2dm"}}, one_node, output}) + "\n" +
                announcement + "\n" + READ_TEXT("0.000") + READ_TEXT("1.000") + skipped + "\n" +
                FIRST_WRITE_TEXT(output) + "\nClosing files and exiting\n\n" + closing_text +
                end_text);
}
INSTANTIATE_TEST_SUITE_P(
    All, DurationConsoles,
    ::testing::Values(Console{"-dur1.5 a_d.dat", "-dur (duration)", "a_d(dur1.5).dat",
                              "Processing duration above 1.5"},
                      Console{"-toi1.5 a_d.dat", "-toi (time to increase)", "a_d(toi).dat",
                              "Processing time of increase by 1.5"}));

}  // namespace
}  // namespace quillet::testing
