// -dif on small files: every byte of the output and of the console, worked out by hand.
#include <cmath>
#include <limits>

#include "program/file_runs.h"
#include "program/set_up_text.h"

namespace quillet::testing {
namespace {

using Times = std::vector<DatTime>;

// A mesh with these bed elevations; nothing else of it matters.
std::string mesh(const std::vector<std::string>& beds) {
  std::string text = "MESH2D\n";
  int id = 0;
  for (const std::string& z : beds) text += "ND " + std::to_string(++id) + " 0 0 " + z + "\n";
  return text + "E3T 1 1 2 1 1\n";
}

constexpr DatShape two_nodes{2, 1};

std::string results(const Times& times, const DatShape& shape = two_nodes) {
  return DAT_FILE(shape, "data", times);
}
std::string differences(const Times& times, const DatShape& shape = two_nodes) {
  return DAT_FILE(shape, "diff_a_d - b_d", times);
}

FileRun dif(const std::string& name, const std::string& arguments, const Files& files) {
  return FileRun(name, "-dif -out out.dat " + arguments, files);
}

// Bed 10 everywhere. Nodes: both wet, only the first, only the second, both dry, exactly at the
// level that is still dry and the next 32-bit real above, half a millimetre of water.
constexpr DatShape six_nodes{6, 5};
const float at_level = 10.0F + 0.001F;
const float above = std::nextafter(at_level, 11.0F);
const std::string bed_10 = mesh({"10", "10", "10", "10", "10", "10"});
const std::string levels1 =
    results({{1, {1, 1, 0, 0, -1}, {12, 12, 10, 10, at_level, 10.0005F}}}, six_nodes);
const std::string levels2 =
    results({{1, {1, 0, 1, 0, 2}, {11.5F, 10, 12, 9, above, 10.0005F}}}, six_nodes);
const Files levels{{"a_h.dat", levels1}, {"b_h.dat", levels2}};
const Files truth_table = WITH(levels, {{"a.2dm", bed_10}, {"b.2dm", bed_10}});

std::string level_differences(const std::vector<int>& status, const std::vector<float>& values) {
  return DAT_FILE(six_nodes, "diff_a_h - b_h", {{1, status, values}});
}

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float inf = std::numeric_limits<float>::infinity();
const Files bed_0{{"a.2dm", mesh({"0", "0"})}, {"b.2dm", mesh({"0", "0"})}};
const std::string ones = results({{1, {1}, {1, 1}}});

INSTANTIATE_TEST_SUITE_P(
    DifferencesWetDryTest, FileRuns,
    ::testing::Values(
        dif("the truth table", "a_h.dat b_h.dat", truth_table)
            .gives(level_differences({1, 1, 1, 0, 0}, {0.5F, 99, -99, 0, -99, 0}))
            .never_says("...need to read water level data."),
        dif("switched off: plain differences, cells active in both", "-nowetdry a_h.dat b_h.dat",
            levels)
            .gives(level_differences({1, 0, 0, 0, 0}, {0.5F, 2, -2, 1, at_level - above, 0}))
            .never_says("...")
            .never_says("WARNING"),
        dif("of two maxima, their sources and times are no results", "-nowetdry a_d.dat b_d.dat",
            {{"a_d.dat", results({{111111, {1}, {5, 6}}, {222222, {1}, {1, 1}}})},
             {"b_d.dat", results({{111111, {1}, {4, 7}}, {333333, {1}, {2.5F, 4}}})}})
            .gives(differences({{111111, {1}, {1, -1}}}))
            .says("Skipping marker time, time found: 222222")
            .says("Skipping marker time, time found: 333333")
            .never_says("WARNING"),
        dif("but one that is asked for is compared", "-nowetdry -t333333 a_d.dat b_d.dat",
            {{"a_d.dat", results({{111111, {1}, {5, 6}}, {333333, {1}, {2, 8}}})},
             {"b_d.dat", results({{111111, {1}, {4, 7}}, {333333, {1}, {2.5F, 4}}})}})
            .gives(differences({{333333, {1}, {-0.5F, 4}}})),
        dif("the second run has its own mesh", "a_h.dat b_h.dat",
            WITH(truth_table, {{"b.2dm", mesh({"20", "9", "11.999", "8", "10", "20"})}}))
            .gives(level_differences({1, 1, 1, 0, 0}, {99, 2, 0, -99, -99, 0})),
        dif("-2dm names one mesh for both", "-2dm m.2dm a_h.dat b_h.dat",
            WITH(levels, {{"m.2dm", mesh({"0", "0", "0", "0", "0", "20"})}}))
            .gives(level_differences({1, 1, 1, 0, 0}, {0.5F, 2, -2, 1, at_level - above, 0})),
        dif("a level that is no number is dry", "a_d.dat b_d.dat",
            WITH(bed_0, {{"a_h.dat", results({{1, {1}, {nan, 1}}})},
                         {"b_h.dat", ones},
                         {"a_d.dat", results({{1, {1}, {5, inf}}})},
                         {"b_d.dat", results({{1, {1}, {nan, 1}}})}}))
            .gives(differences({{1, {1}, {-99, inf}}})),
        dif("a node without a bed elevation is wet", "a_h.dat b_h.dat",
            WITH(bed_0, {{"a.2dm", "MESH2D\nND 2 0 0 5\n"},
                         {"a_h.dat", results({{1, {1}, {-7, 4}}})},
                         {"b_h.dat", ones}}))
            .gives(DAT_FILE(two_nodes, "diff_a_h - b_h", {{1, {1}, {-8, -99}}}))
            .says("WARNING - Did not read an elevation for all nodes from .2dm file.\n"
                  "   Found in \"a.2dm\": nodes 1, expected 2."),
        dif("an element of the mesh that cannot be read ends the run", "a_h.dat b_h.dat",
            WITH(bed_0, {{"b.2dm", mesh({"0", "0"}) + "E4Q 2 1 2 1\n"},
                         {"a_h.dat", ones},
                         {"b_h.dat", ones}}))
            .says("ERROR - Reading .2dm file from following line in .2dm file")
            .says("E4Q 2 1 2 1"),
        dif("as many cells as nodes is a finite-volume run, without the test", "a_d.dat b_d.dat",
            {{"a_d.dat", results({{1, {1, 1}, {5, 0}}}, {2, 2})},
             {"b_d.dat", results({{1, {1, 0}, {3, 7}}}, {2, 2})}})
            .gives(differences({{1, {1, 0}, {2, -7}}}, {2, 2}))
            .says("Number of cells equals number of nodes, assuming ORVANE FV output")
            .never_says("...need")),
    NameOfCase{});

// Node 1 has its bed at 10, node 2 at 20.
const std::string bed_10_20 = mesh({"1.0D1", "20"});
const Files depths_alone{{"a.2dm", bed_10_20},
                         {"b.2dm", bed_10_20},
                         {"a_d.dat", results({{1, {1}, {5, 6}}, {2, {0}, {7, 8}}})},
                         {"b_d.dat", results({{1, {1}, {1, 1}}, {2, {0}, {2, 2}}})}};
const Files depths =
    WITH(depths_alone, {{"a_h.dat", results({{1, {1}, {11, 20}}, {2, {1}, {10, 21}}})},
                        {"b_h.dat", results({{1, {1}, {11, 21}}, {2, {1}, {10, 21}}})}});
const DatTime first_depths{1, {1}, {4, -99}};
const DatTime second_depths{2, {0}, {0, 6}};
std::string no_levels(const std::string& hours, const std::string& file) {
  return "ERROR - No water levels at time " + hours + " in \"" + file +
         "\". Use -nowetdry to compare without the wet/dry test.";
}
const std::string files_d = "a_d.dat b_d.dat";

INSTANTIATE_TEST_SUITE_P(
    DifferencesSeparateLevels, FileRuns,
    ::testing::Values(
        dif("are read in step with the data", files_d, depths)
            .gives(differences({first_depths, second_depths}))
            .never_says("WARNING"),
        dif("are not needed for times that are not compared", files_d,
            WITH(depths,
                 {{"b_d.dat", results({{3, {1}, {9, 9}}, {1, {1}, {1, 1}}, {2, {0}, {2, 2}}})}}))
            .gives(differences({first_depths, second_depths}))
            .says("Skipping time in second data file, time: 3"),
        dif("are those of the data's own time, wherever they stand", files_d,
            WITH(depths, {{"a_h.dat", results({{0.5F, {1}, {9, 9}},
                                               {2.00004F, {1}, {10, 21}},
                                               {0.99996F, {1}, {11, 20}},
                                               {7, {1}, {9, 9}}})}}))
            .gives(differences({first_depths, second_depths}))
            .never_says("WARNING"),
        dif("of other times end the run", files_d,
            WITH(depths, {{"a_h.dat", results({{0.9999F, {1}, {11, 20}}, {2, {1}, {10, 21}}})}}))
            .says(no_levels("1", "a_h.dat")),
        dif("at one time are those of that time", "-t2 -dttol0.75 " + files_d,
            WITH(depths, {{"a_h.dat", results({{1.5F, {1}, {11, 20}}, {2, {1}, {0, 0}}})}}))
            .gives(differences({{2, {0}, {0, -99}}})),
        dif("that the data have none of", "-t2 " + files_d,
            WITH(depths, {{"b_h.dat", results({{1, {1}, {11, 21}}})}}))
            .says(no_levels("2", "b_h.dat")),
        dif("of another mesh end the run", files_d,
            WITH(depths, {{"b_h.dat", results({{1, {1}, {11, 21, 31}}}, {3, 1})}}))
            .says("ERROR - Number nodes and/or cells in b_h.dat not the same as in primary .dat "
                  "file.\n   Found nodes 3, cells 1, expected nodes 2, cells 1 as in "
                  "\"b_d.dat\""),
        dif("that are missing end the run", files_d,
            WITH(depths_alone, {{"a_h.dat", depths.at("a_h.dat")}}))
            .says("ERROR - Could not open file: \"b_h.dat\""),
        dif("at one time within a wide tolerance may be those of another where it has none",
            "-t2 -dttol0.75 " + files_d,
            WITH(depths, {{"a_h.dat", results({{1.5F, {1}, {11, 20}}})}}))
            .gives(differences({{2, {0}, {99, -99}}})),
        dif("of files whose names tell no type", "a.dat b.dat",
            WITH(depths, {{"a.dat", depths.at("a_d.dat")}, {"b.dat", depths.at("b_d.dat")}}))
            .gives(DAT_FILE(two_nodes, "diff_a - b", {first_depths, second_depths}))
            .says("WARNING - Could not identify data type - this may effect results"),
        dif("whether there are any is decided by the first input's type", "a_h.dat b_d.dat", depths)
            .gives(DAT_FILE(two_nodes, "diff_a_h - b_d", {{1, {1}, {99, 0}}, {2, {1}, {0, 99}}}))
            .says("WARNING - Files should be same data type, e.g. both water level.")
            .says("Unexpected results may occur.")
            .never_says("...need to read water level data.")),
    NameOfCase{});

// Maxima of depths and of levels, as files of one operation hold them. The node of the first run is
// wet, that of the second dry.
std::string map(float hours, float value) {
  return DAT_FILE({2, 1}, "data", {{hours, {1}, {value, value}}});
}
Files of_maxima(const std::string& brackets, float hours, float level_hours) {
  return WITH(bed_0, {{"a_d" + brackets, map(hours, 5)},
                      {"b_d" + brackets, map(hours, 3)},
                      {"a_h" + brackets, map(level_hours, 2)},
                      {"b_h" + brackets, map(level_hours, -2)}});
}
FileRun dif_of(const std::string& name, const std::string& brackets, const Files& files) {
  return dif(name, "a_d" + brackets + " b_d" + brackets, files);
}
std::string first_wet(float hours, const std::string& brackets) {
  return DAT_FILE(two_nodes, "diff_a_d" + brackets + " - b_d" + brackets, {{hours, {1}, {99, 99}}});
}
const std::string maxmax = "(maxmax).dat";
const std::string minmin = "(minmin).dat";

INSTANTIATE_TEST_SUITE_P(
    DifferencesOfWhatTheProgramMade, FileRuns,
    ::testing::Values(
        dif_of("maxima take the levels that -max made", maxmax, of_maxima(maxmax, 111111, 111111))
            .gives(first_wet(111111, "(maxmax)"))
            .never_says("WARNING"),
        dif_of("maxima of an engine and of this program have one time", maxmax,
               of_maxima(maxmax, 99999, 111111))
            .gives(first_wet(99999, "(maxmax)")),
        dif_of("the other way round too", maxmax, of_maxima(maxmax, 111111, 99999))
            .gives(first_wet(111111, "(maxmax)")),
        dif_of("times of maxima have the levels of the maxima", ".dat",
               of_maxima(".dat", 99999.1F, 99999))
            .gives(first_wet(99999.1F, "")),
        dif_of("minima stand at 111111", minmin, of_maxima(minmin, 111111, 111111))
            .gives(first_wet(111111, "(minmin)")),
        dif_of("which are no maxima", minmin, of_maxima(minmin, 111111, 99999))
            .says(no_levels("111111", "a_h(minmin).dat")),
        dif_of("without the levels of the maxima it says what to make", maxmax,
               WITH(bed_0, {{"a_d(maxmax).dat", map(111111, 5)},
                            {"b_d(maxmax).dat", map(111111, 3)},
                            {"a_h.dat", map(111111, 2)},
                            {"b_h.dat", map(111111, 2)}}))
            .says("ERROR - No water levels for \"a_d(maxmax).dat\": make \"a_h(maxmax).dat\" with "
                  "the same operation, or use -nowetdry."),
        dif_of("cropped data take cropped levels", "(range).dat",
               WITH(of_maxima("(range).dat", 3, 3),
                    {{"a_h.dat", map(3, -9)}, {"b_h.dat", map(3, 9)}}))
            .gives(first_wet(3, "(range)"))
            .never_says("WARNING"),
        dif("cropped data without cropped levels", "a_d(range).dat b_d(range).dat",
            WITH(bed_0, {{"a_d(range).dat", map(3, 5)},
                         {"b_d(range).dat", map(3, 3)},
                         {"a_h(range).dat", map(3, 2)},
                         {"b_h.dat", results({{1, {1}, {9, 9}}, {3, {1}, {-2, -2}}})}}))
            .gives(first_wet(3, "(range)"))
            .says("WARNING - Water levels from \"b_h.dat\"")));

DatTime both(float hours, float value) {
  return {hours, {1}, {value, value}};
}

FileRun pairs(const std::string& name, const Times& first, const Times& second,
              const DatShape& shape = two_nodes, const std::string& options = "") {
  return dif(name, "-nowetdry " + options + files_d,
             {{"a_d.dat", results(first, shape)}, {"b_d.dat", results(second, shape)}});
}

const std::string inconsistent = "WARNING - Inconsistent times were found: ";
const std::string not_matching = "Warning - Timesteps do not match.";

INSTANTIATE_TEST_SUITE_P(
    DifferencesPairing, FileRuns,
    ::testing::Values(
        pairs("the smaller time of the second run moves the first run on",
              {both(2, 1), both(3, 1), both(4, 1)}, {both(1, 1), both(2, 1)})
            .gives(differences({}))
            .says(inconsistent + "2 1")
            .says("Skipping time in first data file, time: 2")
            .says(inconsistent + "4 1")
            .says("WARNING - No output times in common.")
            .never_says("WARNING - Compared up to")
            .never_says("Processing"),
        pairs("the smaller time of the first run moves the second run on",
              {both(1, 1), both(2, 1), both(3, 1)}, {both(2, 1), both(3, 1)})
            .gives(differences({}))
            .says("Skipping time in second data file, time: 2")
            .says(inconsistent + "1 3"),
        pairs("not beyond 0.00005 h", {both(1.00006F, 5), both(2, 5)}, {both(1, 1), both(2, 1)})
            .gives(differences({}))
            .says(inconsistent + "1.00006 1"),
        pairs("pairs after skipped times; the last output times take part",
              {both(9, 50), both(1, 5), both(2, 6), both(99999, 8)},
              {both(1, 1), both(8, 50), both(2, 2), both(99999, 3)})
            .gives(differences({both(1, 4), both(2, 4), both(99999, 5)}))
            .never_says("WARNING - Compared up to"),
        pairs("a first run that ends early says how far it was compared", {both(1, 5)},
              {both(1, 1), both(2, 2)})
            .gives(differences({both(1, 4)}))
            .says("WARNING - Compared up to time 1."),
        pairs("and so does a second", {both(1, 5), both(2, 5)}, {both(1, 1)})
            .gives(differences({both(1, 4)}))
            .says("WARNING - Compared up to time 1."),
        pairs("within 0.00005 h; the output has the first time", {both(1.00004F, 5), both(2, 5)},
              {both(1, 1), both(2.00004F, 1)})
            .gives(differences({both(1.00004F, 4), both(2, 4)}))
            .never_says(inconsistent)
            .never_says(not_matching),
        pairs("at one time there is no pairing, but a warning",
              {both(1, 9), both(2.005F, 5), both(2, 50)}, {both(2, 1)}, two_nodes,
              "-t2 -dttol0.01 ")
            .gives(differences({both(2.005F, 4)}))
            .says(not_matching)
            .never_says(inconsistent),
        pairs("statuses that the second run does not repeat stay in force",
              {both(1, 5), both(2, 5)}, {{1, {0}, {1, 1}}, {2, {}, {2, 2}}})
            .gives(differences({{1, {0}, {4, 4}}, {2, {0}, {3, 3}}})),
        pairs("vectors by their magnitudes, the negligible being 0",
              {{1, {1}, {3, 4, 1e-6F, -1e-6F}}}, {{1, {1}, {0, -2, 0, 1}}}, {2, 1, true})
            .gives(differences({{1, {1}, {3, -1}}}))),
    NameOfCase{});

const Files pair{{"in/a_d.dat", results({both(1, 5)})}, {"in/b_d.dat", results({both(1, 2)})}};
const std::string pair_difference = differences({both(1, 3)});
const std::string named = "-nowetdry -dif in/a_d.dat in/b_d.dat ";

INSTANTIATE_TEST_SUITE_P(
    DifferencesNames, FileRuns,
    ::testing::Values(
        FileRun("a third file, which is not read", named + "in/c.v2.dat", pair)
            .gives(pair_difference, "in/c.v2.dat"),
        FileRun("a third file prevails over -out", named + "in/c.dat -out d.dat", pair)
            .gives(pair_difference, "in/c.dat")
            .says("WARNING - More than two files specifed for -dif or -ddur option with -out "
                  "option.")),
    NameOfCase{});

const std::string announced =
    "Allocating secondary arrays for results storage.\nDone.\n"
    "...need to also read .2dm files\n...reading .2dm file\n";

TEST(DifferenceConsole, OfLevelsAtAllTimes) {
  const Workspace folder;
  for (const std::string name : {"a.2dm", "b.2dm"}) folder.write(name, bed_10_20);
  folder.write("a_h.dat", results({both(1, 30), both(2, 30)}));
  folder.write("b_h.dat", results({both(1.5F, 30), both(1, 30), both(2, 30), both(3, 30)}));
  const std::string output = "a_h - b_h.dat";
  const std::string processed = "Processing difference results.\n";
  const std::string expected =
      SET_UP({"-dif (difference)",
              {{"a_h.dat", "_h", "a.2dm"}, {"b_h.dat", "_h", "b.2dm"}},
              two_nodes,
              output}) +
      announced + "...reading .2dm file\nFinished reading .2dm files.\n" + READ_TEXT("1.000") +
      READ_TEXT("1.500") + inconsistent + "1 1.5\nSkipping time in second data file, time: 1.5\n" +
      READ_TEXT("1.000") + processed + FIRST_WRITE_TEXT(output) + READ_TEXT("2.000", true) +
      READ_TEXT("2.000") + processed + WRITE_TEXT(output) +
      "WARNING - Compared up to time 2.\nClosing files and exiting\n" + closing_text;
  EXPECT_EQ(RUN(folder, WORDS("-dif a_h.dat b_h.dat")).output, expected + end_text);
  EXPECT_EQ(RUN(folder, WORDS("-b -dif a_h.dat b_h.dat")).output, expected);
}

}  // namespace
}  // namespace quillet::testing
