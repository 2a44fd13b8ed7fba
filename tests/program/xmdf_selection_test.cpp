// Which dataset and which output time of an XMDF file a run takes, and what it says about that.
#include <gtest/gtest.h>

#include <limits>
#include <map>

#include "case_names.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

using Times = std::vector<DatTime>;
using Datasets = std::vector<XmdfData>;

constexpr DatShape scalars{3, 2, false};
constexpr DatShape vectors{3, 2, true};

XmdfData scalar(const std::string& path, const Times& times) {
  return {path, scalars, times};
}

// One output time that nothing depends on.
XmdfData some_scalar(const std::string& path) {
  return scalar(path, {{0, {1, 1}, {1, 2, 3}}});
}
XmdfData some_vector(const std::string& path) {
  return {path, vectors, {{0, {1, 1}, {3, 4, 0, 0, 0, 0}}}};
}

const Times depths{{0, {1, 0}, {1, 2, 3}}, {0.5F, {0, 1}, {4, 5, 6}}, {1, {1, 1}, {7, 8, 9}}};
const DatTime stored{99999, {1, 1}, {10, 20, 30}};
const DatTime stored_least{-99999, {0, 0}, {-1, -2, -3}};

// The results of a run as an engine writes them.
const Datasets engine_file{scalar("run1/Maximums/Depth", {stored}),
                           scalar("run1/Minimums/Depth", {stored_least}),
                           scalar("run1/Temporal/Depth", depths),
                           scalar("run1/Times/Time of Peak h", {{0, {1, 1}, {5, 6, 7}}}),
                           some_vector("run1/Temporal/Vector Velocity")};

Datasets many(const std::string& name, int count) {
  Datasets datasets{some_scalar("run1/Temporal/Depth")};
  for (int i = 0; i < count; ++i) {
    datasets.push_back(some_scalar("run1/Times/" + name + std::to_string(i)));
  }
  return datasets;
}

// A run on a.xmdf, what its console shows, and a dataset of its output out.xmdf.
struct Selection {
  std::string name, arguments;
  Datasets file;
  std::string block{};
  std::string dataset{};  // empty: there is no output
  Times times{};

  Selection& says(const std::string& lines) {
    block = lines;
    return *this;
  }
  Selection& fails(const std::string& lines) { return says(lines + "\nPress Enter to Close\n"); }
  Selection& gives(const std::string& path, const Times& expected) {
    dataset = path;
    times = expected;
    return *this;
  }
};

Selection select(const std::string& what, const std::string& arguments,
                 const Datasets& file = engine_file) {
  return {what, arguments, file};
}

class Selections : public ::testing::TestWithParam<Selection> {};

TEST_P(Selections, TakeTheDatasetAndSaySo) {
  const auto& [name, arguments, file, block, dataset, times] = GetParam();
  SCOPED_TRACE(name);
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", file);
  const RunResult run = RUN(folder, WORDS("-b -out out.xmdf a.xmdf " + arguments));
  EXPECT_NE(run.output.find(block), std::string::npos) << block << "not in\n" << run.output;
  EXPECT_TRUE(run.ended_well());
  EXPECT_FALSE(folder.has("out.xmdf.part"));
  EXPECT_EQ(folder.has("out.xmdf"), !dataset.empty());
  if (dataset.empty()) return;
  EXPECT_TRUE(DAT_FILE({}, "", READ_XMDF(folder, "out.xmdf", dataset)) == DAT_FILE({}, "", times));
}

const std::string nothing_selected =
    "\nERROR - Unable trying to open group ID = 0 [xmdf_get_data_time]\n"
    "   \"a.xmdf\" holds no such output times of what was asked for\n";
const std::string trimmed = "Trim/Temporal/trim99";
const Times some_values{{0, {1, 1}, {1, 2, 3}}};
const Times some_angles{{0, {1, 1}, {36.869896F, 0, 0}}};

INSTANTIATE_TEST_SUITE_P(
    TypesPathsAndIds, Selections,
    ::testing::Values(
        select("all output times of a type", "-trim6 -typeD")
            .says("Searching specified xmdf type in \"a.xmdf\"\n"
                  "Searching scalar datasets for \"Depth\"...\n"
                  "Found: \"run1/Maximums/Depth\"\n"
                  "Found: \"run1/Minimums/Depth\"\n"
                  "Found: \"run1/Temporal/Depth\"\n"
                  "Searching vector datasets for \"Depth\"...\n"
                  "Warning - No vector datasets found of type \"Depth\"\n"
                  "Extracting number of outputs for temporal data in \"a.xmdf\"\n"
                  "Allocating arrays for storing time information from .xmdf file: a.xmdf\n")
            .gives("Trim/Temporal/trim6",
                   {{0, {1, 0}, {1, 2, 3}}, {0.5F, {0, 1}, {4, 5, 6}}, {1, {1, 1}, {6, 6, 6}}}),
        select("no dataset of the type", "-max -typeh")
            .fails("Warning - No vector datasets found of type \"Water Level\"\n"
                   "\nERROR - No datasets found of type \"Water Level\" found in a.xmdf\n"
                   "   Types in the file: d (Depth), v (Vector Velocity)\n"
                   "   -xnfo lists all that the file holds, -path takes any of it.\n"),
        select("types whose codes mean others are not proposed", "-max -typeh",
               {some_scalar("run1/Temporal/Velocity"), some_scalar("run1/Temporal/DEPTH "),
                some_scalar("run1/Temporal/Depth ratio"), some_scalar("Energy/Temporal/x")})
            .fails("found in a.xmdf\n"
                   "   Types in the file: d (Depth)\n"
                   "   -xnfo lists all that the file holds, -path takes any of it.\n"),
        select("no known type at all", "-max -typeh", {some_scalar("run1/Temporal/Velocity")})
            .fails("found in a.xmdf\n"
                   "   -xnfo lists all that the file holds, -path takes any of it.\n"),
        select("a path that is not there", "-max -pathnone")
            .fails("\nERROR - No datasets found of type \"none\" found in a.xmdf\n"
                   "   -xnfo lists all that the file holds, -path takes any of it.\n"),
        select("a scalar in an unknown folder", "-max -typed", {some_scalar("run1/Max/Depth")})
            .fails("Found: \"run1/Max/Depth\"\n"
                   "\nERROR - Unknown Data Folder: \"run1/Max/Depth\"\n"
                   "Expecting one of: Maximums, Minimums, Times or Temporal.\n"
                   "If file has not been written by ORVANE, other folders can be accessed by "
                   "specifying the path (-path)\n"),
        select("a vector in one, in other words", "-max -typev",
               {some_vector("run1/Max/Vector Velocity")})
            .fails("If File has not been written by ORVANE, other folders can be accessed by "
                   "specifying the path (-path)\n"),
        select("folders in any case; a dataset called as the type goes before others",
               "-trim99 -typed",
               {scalar("R/TEMPORAL/DEPTH", {depths[1]}),
                scalar("R/Temporal/Max Depth", {{1, {1, 1}, {1, 1, 1}}})})
            .says("Found: \"R/TEMPORAL/DEPTH\"\n"
                  "WARNING - Not used, its name differs: \"R/Temporal/Max Depth\"\n"
                  "Searching vector")
            .gives(trimmed, {depths[1]}),
        select("without one, the last that holds the type", "-trim99 -typed",
               {scalar("R/Temporal/Depth b", {{1, {1, 1}, {1, 1, 1}}}),
                scalar("R/Temporal/Max Depth", {depths[1]})})
            .says("Found: \"R/Temporal/Depth b\"\n"
                  "WARNING - Dataset is not called as the type: \"R/Temporal/Depth b\"\n"
                  "Found: \"R/Temporal/Max Depth\"\n"
                  "WARNING - Dataset is not called as the type: \"R/Temporal/Max Depth\"\n"
                  "WARNING - More than one dataset matches, using \"R/Temporal/Max Depth\"\n")
            .gives(trimmed, {depths[1]}),
        select("of a type, not of a group called so", "-trim99 -typed",
               {some_scalar("Depth study/Temporal/Water Level")})
            .fails("\nERROR - No datasets found of type \"Depth\" found in a.xmdf\n"
                   "   Types in the file: h (Water Level)\n"
                   "   -xnfo lists all that the file holds, -path takes any of it.\n"),
        select("an exact name in the other list counts", "-va -typew",
               {some_vector("r/Temporal/Vector Wind"), some_scalar("r/Temporal/Wind"),
                some_vector("r/Temporal/Vector Wind 2")})
            .says("Found: \"r/Temporal/Vector Wind\"\n"
                  "WARNING - Not used, its name differs: \"r/Temporal/Vector Wind 2\"\n")
            .gives("Velocity Angle/Temporal/Vector Angle", some_angles),
        select("and keeps vectors from taking its place", "-trim99 -typewi10",
               {some_vector("r/Temporal/Vector Wind"), some_scalar("r/Temporal/Wind")})
            .says("Found: \"r/Temporal/Wind\"\n"
                  "Searching vector datasets for \"Wind\"...\n"
                  "WARNING - Not used, its name differs: \"r/Temporal/Vector Wind\"\n"
                  "Warning - No vector datasets found of type \"Wind\"\n")
            .gives(trimmed, some_values),
        select("a series and a maximum of two runs", "-trim99 -typed",
               {some_scalar("new/Temporal/Depth"), scalar("old/Maximums/Depth", {stored})})
            .says("Warning - No vector datasets found of type \"Depth\"\n"
                  "WARNING - Datasets of different groups match: \"new/Temporal/Depth\" "
                  "\"old/Maximums/Depth\"\n")
            .gives(trimmed, some_values),
        select("scalars and vectors", "-va -pathvelocity",
               {some_scalar("r/Temporal/Velocity"), some_vector("r/Temporal/Vector Velocity")})
            .says("WARNING - Scalar and vector datasets match, using vector: "
                  "\"r/Temporal/Vector Velocity\"\n")
            .gives("Velocity Angle/Temporal/Vector Angle", some_angles),
        select("names cannot write to the terminal", "-trim99 -s1",
               {some_scalar("r/Temporal/a\x1b[31m\nERROR - b\xC2\x9B")})
            .says("\nUsing specifed scalar dataset: r/Temporal/a?[31m?ERROR - b?\n")
            .gives(trimmed, some_values),
        select("a type in the folder Times alone has no time series", "-trim9 -typed",
               {some_scalar("run1/Times/Time of First Depth > 0.1")})
            .fails(nothing_selected),
        select("a path, whatever the folder", "-trim99 -pathmax/depth",
               {some_scalar("run1/Max/Depth")})
            .says("Found: \"run1/Max/Depth\"\n")
            .gives(trimmed, some_values),
        select("group and name without the folder", "-trim99 -pathrun1/Depth")
            .says("Found: \"run1/Minimums/Depth\"\n"
                  "WARNING - More than one dataset matches, using \"run1/Minimums/Depth\"\n"
                  "Found: \"run1/Temporal/Depth\"\n"
                  "WARNING - More than one dataset matches, using \"run1/Temporal/Depth\"\n")
            .gives(trimmed, depths),
        select("a scalar by its place", "-trim99 -s2")
            .says("Searching for specified data type in .xmdf files.\n"
                  "\nUsing specifed scalar dataset: run1/Minimums/Depth\n"
                  "Extracting number of outputs for temporal data in \"a.xmdf\"\n")
            .gives(trimmed, {stored_least}),
        select("no such scalar", "-max -s5")
            .fails("\nERROR - Specifed scalar dataset does not exist.\n"
                   "   Maximum scalar ID = 4\n"),
        select("no such vector", "-va -v0")
            .fails("\nERROR - Specifed vector dataset does not exist.\n"
                   "   Maximum vector ID = 1\n"),
        select("times of peak have one output, at time 0", "-trim6 -s4 -t99999")
            .says("Maximum timestep does not exist for Time of Peak datasets, using time 0\n")
            .gives("Trim/Maximums/trim6", {{0, {1, 1}, {5, 6, 6}}})),
    NameOfCase{});

constexpr float no_number = std::numeric_limits<float>::quiet_NaN();
const DatTime at_no_time{no_number, {1, 1}, {8, 8, 8}};
const DatTime nearly_two{2.1F, {1, 1}, {9, 9, 9}};

INSTANTIATE_TEST_SUITE_P(
    TimesAndExtremes, Selections,
    ::testing::Values(
        select("the earlier of two that are as near", "-trim99 -typed -t0.75 -dttol0.3")
            .says("Searching XMDF files for specified output time: 0.75\n"
                  "Searching xmdf file: \"a.xmdf\"\n"
                  "Found closest time: 0.5\n"
                  "Getting data from: a.xmdf\n"
                  "Getting data from group: run1/Temporal/Depth\n"
                  "Opening Group.\nDone.\n"
                  "Reading scalar data at timestep 2\n"
                  "Processing final timestep... closing group\nDone\n"
                  "Finished getting data\n")
            .gives(trimmed, {depths[1]}),
        select("a time that is no number is never near", "-trim99 -typed -t2 -dttol0.2",
               {scalar("run1/Temporal/Depth", {nearly_two, at_no_time, stored})})
            .says("Found closest time: 2.1\n")
            .gives(trimmed, {nearly_two}),
        select("the stored maximum", "-trim15 -typed -t99999")
            .says("Searching xmdf file: \"a.xmdf\"\n"
                  "Looking for data in /Maximums/ folder.\n"
                  "Found run1/Maximums/Depth\n"
                  "Getting data from: a.xmdf\n"
                  "Getting data from group: run1/Maximums/Depth\n"
                  "Opening Group.\nDone.\n"
                  "Reading scalar data at timestep 1\n")
            .gives("Trim/Maximums/trim15", {{99999, {1, 1}, {10, 15, 15}}}),
        select("the stored minimum", "-trim99 -typed -t-99999")
            .says("Searching xmdf file: \"a.xmdf\"\nFound run1/Minimums/Depth\nGetting data from: ")
            .gives("Trim/Minimums/trim99", {stored_least}),
        select("a tolerance does not widen the search for the stored maximum",
               "-trim9 -typed -t99999.01 -dttol0.1")
            .fails("\nERROR - Closest time \"1\" is not within time search tolerance\n"
                   "   \"a.xmdf\", asked for time 99999.01, tolerance 0.1\n"),
        select("no stored maximum", "-va -typev -t99999")
            .fails("Looking for data in /Maximums/ folder.\n"
                   "\nERROR - No stored maximum found in \"a.xmdf\"\n"),
        select("no stored minimum", "-va -typev -t-99999")
            .fails("Searching xmdf file: \"a.xmdf\"\n"
                   "\nERROR - No stored minimum found in \"a.xmdf\"\n"),
        select("times of maxima", "-trim9 -typed -t99999.1")
            .fails("Searching xmdf file: \"a.xmdf\"\n"
                   "ERROR - Should not be here (extract vector for /times/)\n" +
                   nothing_selected),
        select("a minimum at one time", "-min -typed -t1 b.xmdf")
            .fails("\nERROR - Min not yet enabled for xmdf files.\n"),
        select("the time of the stored minimum", "-min -typed")
            .says("Getting minimum data from: a.xmdf\n"
                  "Getting data from group: run1/Minimums/Depth\n"
                  "Closing Group\nDone\n")
            .gives("MinMin/Minimums/Min Time", {{-111111, {0, 0}, {99999, 99999, 99999}}}),
        select("every output time, the last one too", "-max -typed -ignore_mm")
            .says("Extracting maximums from /Temporal/ folder in a.xmdf\n"
                  "Opening data group: run1/Temporal/Depth\n"
                  "Closing Group\nDone\n")
            .gives("MaxMax/Maximums/Max Time", {{111111, {1, 1}, {1, 1, 1}}}),
        select("source and time maps are no results", "-max -typed",
               {scalar("r/Temporal/Depth",
                       {{111111, {1, 0}, {5, 6, 7}}, {222222, {1, 1}, {10, 10, 10}}})})
            .says("Skipping marker time, time found: 222222\nClosing Group\n")
            .gives("MaxMax/Maximums/Max Value", {{111111, {1, 0}, {5, 6, 7}}}),
        select("neither stored nor a time series", "-max -typed",
               {scalar("r/Minimums/Depth", {stored_least})})
            .fails(nothing_selected)),
    NameOfCase{});

INSTANTIATE_TEST_SUITE_P(
    Headers, Selections,
    ::testing::Values(
        select("no scalars", "-va -typev", {some_vector("r/Temporal/Vector Velocity")})
            .says("Getting scalar dataset information\n"
                  "Warning - Number of scalar paths less than or equal to zero.\n"
                  "Number of scalar datasets: 0\n"
                  "Maximum character length of dataset names: 0\n"
                  "Getting vector dataset information\n"
                  "Number of scalar datasets: 1\n"
                  "Maximum character length of dataset names: 26\n")
            .gives("Velocity Angle/Temporal/Vector Angle", some_angles),
        select("no datasets", "-max -typed", {})
            .fails("Getting time units, number of cells and nodes from XMDF file \"a.xmdf\"\n"
                   "\nERROR - Could not open data group \"\" in XMDF file.\n"
                   "   \"a.xmdf\"\n"),
        select("100 of every kind are read, without depth some", "-trim99 -typed",
               many("Duration Above ", 100))
            .says("  101 run1/Times/Duration Above 99\nGetting time units")
            .gives(trimmed, some_values),
        select("101 first times", "-max -typed", many("Time of First Depth > 0.", 101))
            .fails("\nERROR - Exceeded maximum number of time outputs, limit is 100.\n"),
        select("101 durations", "-max -typed", many("Duration Above ", 101))
            .fails("\nERROR - Exceeded maximum number of duration outputs, limit is 100.\n"),
        select("11 times of peak", "-max -typed", many("time of peak V", 11))
            .fails("\nERROR - Exceeded maximum number of peak time outputs, limit is 10.\n"),
        select("names without a depth, other names; no vectors", "-trim99 -typed",
               {some_scalar("r/Temporal/Depth"), some_scalar("r/Times/Duration Above level"),
                some_scalar("r/Times/Something")})
            .says("    3 r/Times/Something\n"
                  "WARNING - Extracting cutoff depth from Duration Above level\n"
                  "WARNING - Unable to determine /Time/ output type.\n")
            .gives(trimmed, some_values)),
    NameOfCase{});

}  // namespace
}  // namespace quillet::testing
