// Which dataset and which output time of an XMDF file a run takes, and what it says about that.
#include <gtest/gtest.h>

#include <limits>
#include <map>

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

struct Selection {
  std::string what;
  std::string arguments;
  Datasets file;          // a.xmdf
  std::string block;      // of the console
  std::string dataset{};  // of the output out.xmdf; empty: there is no output
  Times times{};
};

class Selections : public ::testing::TestWithParam<Selection> {};

TEST_P(Selections, TakeTheDatasetAndSaySo) {
  const Workspace folder;
  MAKE_XMDF(folder, "a.xmdf", GetParam().file);
  const RunResult run = RUN(folder, WORDS("-b -out out.xmdf a.xmdf " + GetParam().arguments));
  EXPECT_NE(run.output.find(GetParam().block), std::string::npos) << GetParam().what << "\n"
                                                                  << GetParam().block << "not in\n"
                                                                  << run.output;
  EXPECT_TRUE(run.ended_well());
  EXPECT_FALSE(folder.has("out.xmdf.part"));
  if (GetParam().dataset.empty()) {
    EXPECT_FALSE(folder.has("out.xmdf")) << GetParam().what;
    return;
  }
  const Times written = READ_XMDF(folder, "out.xmdf", GetParam().dataset);
  ASSERT_EQ(written.size(), GetParam().times.size());
  for (std::size_t i = 0; i < written.size(); ++i) {
    EXPECT_EQ(written[i].time, GetParam().times[i].time) << GetParam().what;
    EXPECT_EQ(written[i].values, GetParam().times[i].values) << GetParam().what;
    EXPECT_EQ(written[i].statuses, GetParam().times[i].statuses) << GetParam().what;
  }
}

const std::string close = "\nPress Enter to Close\n";
const std::string nothing_selected =
    "\nERROR - Unable trying to open group ID = 0 [xmdf_get_data_time]\n" + close;

INSTANTIATE_TEST_SUITE_P(
    Types, Selections,
    ::testing::Values(
        Selection{"all output times of a type",
                  "-trim6 -typeD",
                  engine_file,
                  "Searching specified xmdf type in \"a.xmdf\"\n"
                  "Searching scalar datasets for \"Depth\"...\n"
                  "Found: \"run1/Maximums/Depth\"\n"
                  "Found: \"run1/Minimums/Depth\"\n"
                  "Found: \"run1/Temporal/Depth\"\n"
                  "Searching vector datasets for \"Depth\"...\n"
                  "Warning - No vector datasets found of type \"Depth\"\n"
                  "Extracting number of outputs for temporal data in \"a.xmdf\"\n"
                  "Allocating arrays for storing time information from .xmdf file: a.xmdf\n",
                  "Trim/Temporal/trim6",
                  {{0, {1, 0}, {1, 2, 3}}, {0.5F, {0, 1}, {4, 5, 6}}, {1, {1, 1}, {6, 6, 6}}}},
        Selection{"vectors alone",
                  "-va -typev",
                  engine_file,
                  "Warning - No scalar datasets found of type \"Vector Velocity\"\n"
                  "Searching vector datasets for \"Vector Velocity\"...\n"
                  "Found: \"run1/Temporal/Vector Velocity\"\n",
                  "Velocity Angle/Temporal/Vector Angle",
                  {{0, {1, 1}, {36.869896F, 0, 0}}}},
        Selection{"no dataset of the type", "-max -typeh", engine_file,
                  "Warning - No vector datasets found of type \"Water Level\"\n"
                  "\nERROR - No datasets found of type \"Water Level\" found in a.xmdf\n" +
                      close},
        Selection{"a scalar in an unknown folder",
                  "-max -typed",
                  {some_scalar("run1/Max/Depth")},
                  "Found: \"run1/Max/Depth\"\n"
                  "\nERROR - Unknown Data Folder: \"run1/Max/Depth\"\n"
                  "Expecting one of: Maximums, Minimums, Times or Temporal.\n"
                  "If file has not been written by ORVANE, other folders can be accessed by "
                  "specifying the path (-path)\n" +
                      close},
        Selection{"a vector in an unknown folder",
                  "-max -typev",
                  {some_vector("run1/Max/Vector Velocity")},
                  "\nERROR - Unknown Data Folder: \"run1/Max/Vector Velocity\"\n"
                  "Expecting one of: Maximums, Minimums, Times or Temporal.\n"
                  "If File has not been written by ORVANE, other folders can be accessed by "
                  "specifying the path (-path)\n" +
                      close},
        Selection{"folders in any case; the last match of a folder",
                  "-trim9 -typed",
                  {scalar("R/TEMPORAL/DEPTH", {{1, {1, 1}, {1, 1, 1}}}),
                   scalar("R/Temporal/Max Depth", {{2, {1, 0}, {2, 2, 2}}})},
                  "Found: \"R/TEMPORAL/DEPTH\"\n"
                  "Found: \"R/Temporal/Max Depth\"\n"
                  "WARNING - More than one dataset matches, using \"R/Temporal/Max Depth\"\n",
                  "Trim/Temporal/trim9",
                  {{2, {1, 0}, {2, 2, 2}}}},
        Selection{"a type in the folder Times alone has no time series",
                  "-trim9 -typed",
                  {some_scalar("run1/Times/Time of First Depth > 0.1")},
                  nothing_selected},
        Selection{"no selection at all", "-max", engine_file,
                  "\nERROR - Must specify an output type to be processed if using xmdf files.\n"
                  "   Use -type<output type> to use a specific output type.\n"
                  "   Output types should be as specified in the .ocf eg. h, V, q, or d\n"
                  "   E.g. -typeV to process the velocity results.\n" +
                      close}));

INSTANTIATE_TEST_SUITE_P(
    PathsAndIds, Selections,
    ::testing::Values(
        Selection{"a path, whatever the folder",
                  "-trim9 -pathmax/depth",
                  {scalar("run1/Max/Depth", {{3, {1, 0}, {1, 2, 30}}})},
                  "Found: \"run1/Max/Depth\"\n",
                  "Trim/Temporal/trim9",
                  {{3, {1, 0}, {1, 2, 9}}}},
        Selection{"group and name without the folder", "-trim99 -pathrun1/Depth", engine_file,
                  "Found: \"run1/Minimums/Depth\"\n"
                  "WARNING - More than one dataset matches, using \"run1/Minimums/Depth\"\n"
                  "Found: \"run1/Temporal/Depth\"\n"
                  "WARNING - More than one dataset matches, using \"run1/Temporal/Depth\"\n",
                  "Trim/Temporal/trim99", depths},
        Selection{"no such path", "-max -pathnothing", engine_file,
                  "\nERROR - No datasets found of type \"nothing\" found in a.xmdf\n" + close},
        Selection{"a scalar by its place",
                  "-trim99 -s2",
                  engine_file,
                  "Searching for specified data type in .xmdf files.\n"
                  "\nUsing specifed scalar dataset: run1/Minimums/Depth\n"
                  "Extracting number of outputs for temporal data in \"a.xmdf\"\n",
                  "Trim/Temporal/trim99",
                  {stored_least}},
        Selection{"a vector by its place, in the same words",
                  "-va -v1",
                  engine_file,
                  "\nUsing specifed scalar dataset: run1/Temporal/Vector Velocity\n",
                  "Velocity Angle/Temporal/Vector Angle",
                  {{0, {1, 1}, {36.869896F, 0, 0}}}},
        Selection{"no such scalar", "-max -s5", engine_file,
                  "\nERROR - Specifed scalar dataset does not exist.\n   Maximum scalar ID = 4\n" +
                      close},
        Selection{"no such vector", "-va -v0", engine_file,
                  "\nERROR - Specifed vector dataset does not exist.\n   Maximum vector ID = 1\n" +
                      close},
        Selection{"times of peak have one output, at time 0",
                  "-trim6 -s4 -t99999",
                  engine_file,
                  "Maximum timestep does not exist for Time of Peak datasets, using time 0\n",
                  "Trim/Maximums/trim6",
                  {{0, {1, 1}, {5, 6, 6}}}},
        Selection{"a scalar where vectors are needed", "-va -typed", engine_file,
                  "\nERROR - .dat file or xmdf type must be vector data for -va option\n"
                  "Press Enter to Continue\n"}));

INSTANTIATE_TEST_SUITE_P(
    RequestedTimes, Selections,
    ::testing::Values(
        Selection{"the earlier of two that are as near",
                  "-trim99 -typed -t0.75 -dttol0.3",
                  engine_file,
                  "Searching XMDF files for specified output time: 0.75\n"
                  "Searching xmdf file: \"a.xmdf\"\n"
                  "Found closest time: 0.5\n"
                  "Getting data from: a.xmdf\n"
                  "Getting data from group: run1/Temporal/Depth\n"
                  "Opening Group.\n"
                  "Done.\n"
                  "Reading scalar data at timestep 2\n"
                  "Processing final timestep... closing group\n"
                  "Done\n"
                  "Finished getting data\n",
                  "Trim/Temporal/trim99",
                  {depths[1]}},
        Selection{"none near enough", "-trim9 -typed -t2", engine_file,
                  "\nERROR - Closest time \"1\" is not within time search tolerance\n" + close},
        Selection{"a time that is no number is never near",
                  "-trim99 -typed -t2 -dttol0.2",
                  {scalar("run1/Temporal/Depth",
                          {{2.1F, {1, 1}, {9, 9, 9}},
                           {std::numeric_limits<float>::quiet_NaN(), {1, 1}, {8, 8, 8}},
                           {3, {1, 1}, {7, 7, 7}}})},
                  "Found closest time: 2.1\n",
                  "Trim/Temporal/trim99",
                  {{2.1F, {1, 1}, {9, 9, 9}}}},
        Selection{"only times that are no numbers",
                  "-trim99 -typed -t2",
                  {scalar("run1/Temporal/Depth",
                          {{std::numeric_limits<float>::quiet_NaN(), {1, 1}, {8, 8, 8}}})},
                  "is not within time search tolerance\n" + close},
        Selection{"the stored maximum",
                  "-trim15 -typed -t99999",
                  engine_file,
                  "Searching xmdf file: \"a.xmdf\"\n"
                  "Looking for data in /Maximums/ folder.\n"
                  "Found run1/Maximums/Depth\n"
                  "Getting data from: a.xmdf\n"
                  "Getting data from group: run1/Maximums/Depth\n"
                  "Opening Group.\n"
                  "Done.\n"
                  "Reading scalar data at timestep 1\n",
                  "Trim/Maximums/trim15",
                  {{99999, {1, 1}, {10, 15, 15}}}},
        Selection{"the stored minimum",
                  "-trim9 -typed -t-99999",
                  engine_file,
                  "Searching xmdf file: \"a.xmdf\"\nFound run1/Minimums/Depth\nGetting data from: ",
                  "Trim/Minimums/trim9",
                  {stored_least}},
        Selection{"a tolerance does not widen the search for the stored maximum",
                  "-trim9 -typed -t99999.01 -dttol0.1", engine_file,
                  "\nERROR - Closest time \"1\" is not within time search tolerance\n" + close},
        Selection{"no stored maximum", "-va -typev -t99999", engine_file,
                  "Looking for data in /Maximums/ folder.\n"
                  "\nERROR - No stored maximum found in \"a.xmdf\"\n" +
                      close},
        Selection{"no stored minimum", "-va -typev -t-99999", engine_file,
                  "Searching xmdf file: \"a.xmdf\"\n"
                  "\nERROR - No stored minimum found in \"a.xmdf\"\n" +
                      close},
        Selection{"times of maxima", "-trim9 -typed -t99999.1", engine_file,
                  "Searching xmdf file: \"a.xmdf\"\n"
                  "ERROR - Should not be here (extract vector for /times/)\n" +
                      nothing_selected},
        Selection{"a minimum at one time", "-min -typed -t1 b.xmdf", engine_file,
                  "\nERROR - Min not yet enabled for xmdf files.\n" + close},
        Selection{"one input at one time", "-max -typed -t1", engine_file,
                  "\nERROR - expecting two or more files when using -max or -min with a specified "
                  "time (-t)\n" +
                      close}));

INSTANTIATE_TEST_SUITE_P(
    Extremes, Selections,
    ::testing::Values(
        Selection{"the stored maximum",
                  "-max -typed",
                  engine_file,
                  "Getting maximum data from: a.xmdf\n"
                  "Getting data from group: run1/Maximums/Depth\n"
                  "Closing Group\n"
                  "Done\n"
                  "Writing Output\n",
                  "MaxMax/Maximums/Max Value",
                  {{111111, {1, 1}, {10, 20, 30}}}},
        Selection{"the stored minimum",
                  "-min -typed",
                  engine_file,
                  "Getting minimum data from: a.xmdf\n"
                  "Getting data from group: run1/Minimums/Depth\n"
                  "Closing Group\n"
                  "Done\n",
                  "MinMin/Minimums/Min Value",
                  {{-111111, {0, 0}, {-1, -2, -3}}}},
        Selection{"its time",
                  "-min -typed",
                  engine_file,
                  "Creating scalar dataset: Min Time\n",
                  "MinMin/Minimums/Min Time",
                  {{-111111, {0, 0}, {99999, 99999, 99999}}}},
        Selection{"every output time, the last one too",
                  "-max -typed -ignore_mm",
                  engine_file,
                  "Extracting maximums from /Temporal/ folder in a.xmdf\n"
                  "Opening data group: run1/Temporal/Depth\n"
                  "Closing Group\n"
                  "Done\n",
                  "MaxMax/Maximums/Max Time",
                  {{111111, {1, 1}, {1, 1, 1}}}},
        Selection{
            "minima; a cell that is always wet",
            "-min -typed -ignore_mm",
            {scalar("r/Temporal/Depth", {{1, {1, 1}, {-1, 2, -3}}, {2, {1, 0}, {-1, -4, 0}}})},
            "Extracting minimums from /Temporal/ folder in a.xmdf\n"
            "Opening data group: r/Temporal/Depth\n",
            "MinMin/Minimums/Min Time",
            {{-111111, {1, 0}, {1, 2, 1}}}},
        Selection{"the first of two equal vectors",
                  "-max -typev",
                  {{"r/Temporal/Vector Velocity",
                    vectors,
                    {{1, {0, 1}, {3, 4, 0, 0, 1, 0}}, {2, {0, 0}, {-5, 0, 0, 0, 0, -2}}}}},
                  "Creating vector dataset: Max Value\nCreating scalar dataset: Max Value_mag\n",
                  "MaxMax/Maximums/Max Value",
                  {{111111, {0, 1}, {3, 4, 0, 0, 0, -2}}}},
        Selection{"their magnitudes",
                  "-max -typev",
                  {{"r/Temporal/Vector Velocity", vectors, {{1, {0, 1}, {3, 4, 0, 0, 1, 0}}}}},
                  "Creating scalar dataset: Max Value_mag\n",
                  "MaxMax/Maximums/Max Value_mag",
                  {{111111, {0, 1}, {5, 0, 1}}}},
        Selection{"a vector named so gives its name to the magnitudes",
                  "-rangeA0 -rangeB1 -typev",
                  engine_file,
                  "Creating vector dataset: Vector Velocity\nCreating scalar dataset: Velocity\n",
                  "Range/Temporal/Velocity",
                  {{0, {1, 1}, {5, 0, 0}}}},
        Selection{"neither stored nor a time series",
                  "-max -typed",
                  {scalar("r/Minimums/Depth", {stored_least})},
                  nothing_selected}));

INSTANTIATE_TEST_SUITE_P(
    Headers, Selections,
    ::testing::Values(
        Selection{"no scalars",
                  "-va -typev",
                  {some_vector("r/Temporal/Vector Velocity")},
                  "Getting scalar dataset information\n"
                  "Warning - Number of scalar paths less than or equal to zero.\n"
                  "Number of scalar datasets: 0\n"
                  "Maximum character length of dataset names: 0\n"
                  "Getting vector dataset information\n"
                  "Number of scalar datasets: 1\n"
                  "Maximum character length of dataset names: 26\n",
                  "Velocity Angle/Temporal/Vector Angle",
                  {{0, {1, 1}, {36.869896F, 0, 0}}}},
        Selection{"no vectors",
                  "-trim99 -typed",
                  {some_scalar("r/Temporal/Depth")},
                  "Warning - Number of vector paths less than or equal to zero.\n"
                  "Number of scalar datasets: 0\n",
                  "Trim/Temporal/trim99",
                  {{0, {1, 1}, {1, 2, 3}}}},
        Selection{"no datasets",
                  "-max -typed",
                  {},
                  "Getting time units, number of cells and nodes from XMDF file \"a.xmdf\"\n"
                  "\nERROR - Could not open data group \"\" in XMDF file.\n" +
                      close},
        Selection{"100 of every kind are read, without depth some",
                  "-trim99 -typed",
                  many("Duration Above ", 100),
                  "  101 run1/Times/Duration Above 99\nGetting time units",
                  "Trim/Temporal/trim99",
                  {{0, {1, 1}, {1, 2, 3}}}},
        Selection{"101 first times", "-max -typed", many("Time of First Depth > 0.", 101),
                  "\nERROR - Exceeded maximum number of time outputs, limit is 100.\n" + close},
        Selection{"101 durations", "-max -typed", many("Duration Above ", 101),
                  "\nERROR - Exceeded maximum number of duration outputs, limit is 100.\n" + close},
        Selection{"11 times of peak", "-max -typed", many("time of peak V", 11),
                  "\nERROR - Exceeded maximum number of peak time outputs, limit is 10.\n" + close},
        Selection{"names without a depth, other names",
                  "-trim99 -typed",
                  {some_scalar("r/Temporal/Depth"), some_scalar("r/Times/Duration Above level"),
                   some_scalar("r/Times/Something")},
                  "    3 r/Times/Something\n"
                  "WARNING - Extracting cutoff depth from Duration Above level\n"
                  "WARNING - Unable to determine /Time/ output type.\n",
                  "Trim/Temporal/trim99",
                  {{0, {1, 1}, {1, 2, 3}}}}));

}  // namespace
}  // namespace quillet::testing
