// -dur and -toi on small files: every byte of the output and of the console, worked out by hand.
#include "program/file_runs.h"
#include "program/set_up_text.h"

namespace quillet::testing {
namespace {

using Times = std::vector<DatTime>;

constexpr DatShape shape{3, 3};

// Node 1 rises and falls, node 2 rises and stays, node 3 rests on 0.5. The stored maximum is none
// of the simulation.
const Times flood{{0, {1, 0, 0}, {0, 0, 0.5F}},
                  {1, {}, {1, 4, 0.5F}},
                  {3, {0, -1, 0}, {0, 4, 0.5F}},
                  {99999, {1, 1, 1}, {90, 90, 90}}};
const std::string skipped = "Skipping times above 99,998, time found: 99999";

FileRun duration(const std::string& what, const std::string& option, const Times& times,
                 const DatShape& of = shape) {
  return FileRun(what, option + " -out out.dat a_d.dat",
                 {{"a_d.dat", DAT_FILE(of, "depth", times)}});
}
std::string output(const std::string& name, const std::vector<int>& status,
                   const std::vector<float>& values) {
  return DAT_FILE({shape.nodes, shape.cells}, name, {{0, status, values}});
}

// The name in a .dat header loses what follows its last point.
INSTANTIATE_TEST_SUITE_P(
    Durations, FileRuns,
    ::testing::Values(
        duration("half of the rise, half of the fall; more than the cutoff, not the cutoff itself",
                 "-dur0.5", flood)
            .gives(output("dur0", {1, 1, 0}, {1.5F, 2.875F, 0}))
            .says(skipped),
        duration("the cutoff is crossed early in a steep rise", "-dur0.25", flood)
            .gives(output("dur0", {1, 1, 0}, {2.25F, 2.9375F, 3})),
        duration("time of increase over the first value", "-toi0.5", flood)
            .gives(output("Time to Increase 0", {1, 1, 0}, {0.5F, 0.125F, -99999})),
        duration("the start is a time like others; a jump takes no time", "-toi1",
                 {{-2, {1, 0, 0}, {5, 5, 5}},
                  {2, {}, {5, 7, 5}},
                  {2, {}, {8, 7, 5}},
                  {4, {}, {8, 7, 7}}})
            .gives(output("Time to Increase 1", {1, 0, 0}, {2, 0, 3})),
        duration("times that repeat add nothing", "-dur6",
                 {{1, {0, 0, 0}, {7, 7, 0}}, {1, {}, {7, 0, 7}}, {1.5F, {}, {7, 0, 7}}})
            .gives(output("dur6", {0, 0, 0}, {0.5F, 0, 0.5F})),
        duration("stored values alone", "-toi1", {flood.back()})
            .gives(output("Time to Increase 1", {0, 0, 0}, {-99999, -99999, -99999}))
            .says("WARNING - No output times in \"a_d.dat\""),
        duration("every value is more than 1 below itself, at the only time too", "-toi-1",
                 {{5, {1, 0, 0}, {1, 2, 3}}})
            .gives(output("Time to Increase -1", {1, 0, 0}, {5, 5, 5})),
        duration("vectors by their lengths: 5, 0 and 13; 0 and 1", "-dur2.5",
                 {{0, {1}, {3, -4, 0, 0}}, {2, {1}, {0, 0, 0, 1}}, {4, {0}, {-5, 12, 0, 0}}},
                 {2, 1, true})
            .gives(DAT_FILE({2, 1}, "dur2", {{0, {1}, {1 + 2 * (13 - 2.5F) / 13, 0}}})),
        duration("times must run forwards", "-dur1", {{1, {}, {1}}, {2.5F, {}, {2}}, {2, {}, {1}}},
                 {1, 0})
            .says("ERROR - Reading file \"a_d.dat\": expected an output time of 2.5 or later, "
                  "found 2")),
    NameOfCase{});

class DurationConsoles : public ::testing::TestWithParam<bool> {};

TEST_P(DurationConsoles, FromStartToEnd) {
  const bool is_duration = GetParam();
  const Workspace folder;
  const DatShape one_node{1, 0};
  const std::string option = is_duration ? "-dur1.5" : "-toi0.5";
  const std::string file = is_duration ? "a_d(dur1.5).dat" : "a_d(toi).dat";
  folder.write("a_d.dat",
               DAT_FILE(one_node, "data", {{0, {}, {1}}, {1, {}, {2}}, {99999, {}, {2}}}));
  EXPECT_EQ(RUN(folder, {option, "a_d.dat"}).output,
            SET_UP({is_duration ? "-dur (duration)" : "-toi (time to increase)",
                    {{"a_d.dat", "_d", "a.2dm"}},
                    one_node,
                    file}) +
                (is_duration ? "\nProcessing duration above 1.5\n"
                             : "\nProcessing time of increase by 0.5\n") +
                READ_TEXT("0.000") + READ_TEXT("1.000") + skipped + "\n" + FIRST_WRITE_TEXT(file) +
                "\nClosing files and exiting\n\n" + closing_text + end_text);
}

INSTANTIATE_TEST_SUITE_P(DurOrToi, DurationConsoles, ::testing::Bool(),
                         (NameOfCondition{"Dur", "Toi"}));

}  // namespace
}  // namespace quillet::testing
