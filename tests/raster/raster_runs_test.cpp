// --grid and --points as whole runs: small files worked out by hand, and what is refused. Larger
// rasters are compared by a foreign reader.
#include <cmath>
#include <filesystem>

#include "program/file_runs.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

// Two squares side by side, 2 m wide; values are 10 x + y at their nodes.
const std::string mesh =
    "MESH2D\nND 1 0 0 0\nND 2 2 0 0\nND 3 4 0 0\nND 4 0 2 0\nND 5 2 2 0\nND 6 4 2 0\n"
    "E4Q 1 1 2 5 4 1\nE4Q 2 2 3 6 5 1\n";
constexpr DatShape shape{6, 2};
constexpr DatShape vectors{6, 2, true};
const std::vector<float> plane{0, 20, 40, 2, 22, 42};

std::string depths(const std::vector<DatTime>& times) {
  return DAT_FILE(shape, "Depth", times);
}
const DatTime at_1{1, {1, 1}, plane};
const DatTime at_2{2, {0, 1}, {1, 1, 1, 1, 1, 1}};
const DatTime maximum{99999, {1, 0}, plane};
const Files one_time{{"a.2dm", mesh}, {"a_d.dat", depths({at_1})}};
const Files series{{"a.2dm", mesh}, {"a_d.dat", depths({at_1, at_2, maximum})}};

FileRun asc(const std::string& name, const std::string& arguments, const Files& files) {
  return FileRun(name, "--grid=1 -out out.asc " + arguments, files);
}
std::string grid_of(const std::string& rows) {
  return "ncols 4\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999.0\n" + rows;
}

std::string whole(const std::string& values) {
  return grid_of(values + "\n" + values + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    AsciiGrids, FileRuns,
    ::testing::Values(
        asc("values at cell centres, rows from the north", "a_d.dat", one_time)
            .gives(grid_of("6.5 16.5 26.5 36.5\n5.5 15.5 25.5 35.5\n"), "out.asc")
            .says("Opertational flag --grid (raster)")
            .says("Writing raster of 4 x 2 cells and 1 output times: out.asc"),
        asc("the output time asked for; dry elements hold no data", "-t2 a_d.dat", series)
            .gives(whole("-9999 -9999 1 1"), "out.asc"),
        asc("-nowetdry: all elements are wet", "-t2 -nowetdry a_d.dat", series)
            .gives(whole("1 1 1 1"), "out.asc"),
        asc("stored maxima on request", "-t99999 a_d.dat", series)
            .gives(grid_of("6.5 16.5 -9999 -9999\n5.5 15.5 -9999 -9999\n"), "out.asc"),
        asc("stored maxima where there is nothing else, maps beside them never", "a_d.dat",
            {{"a.2dm", mesh},
             {"a_d.dat", depths({{111111, {1, 1}, {1, 1, 1, 1, 1, 1}},
                                 {222222, {1, 1}, plane},
                                 {333333, {1, 1}, plane}})}})
            .gives(whole("1 1 1 1"), "out.asc")
            .says("Skipping marker time, time found: 222222"),
        asc("magnitudes of vectors", "a_V.dat",
            {{"a.2dm", mesh},
             {"a_V.dat",
              DAT_FILE(vectors, "V", {{1, {1, 1}, {3, 4, 3, 4, 3, 4, 3, 4, 3, 4, 3, 4}}})}})
            .gives(whole("5 5 5 5"), "out.asc"),
        asc("angles are not interpolated", "a_va.dat",
            {{"a.2dm", mesh}, {"a_va.dat", depths({{1, {1, 1}, {170, -170, 9, 170, -170, 9}}})}})
            .gives(whole("170 -170 -170 9"), "out.asc"),
        asc("what is not a number is no data", "a_d.dat",
            {{"a.2dm", mesh}, {"a_d.dat", depths({{1, {1, 1}, {NAN, 1, 1, 1, 1, INFINITY}}})}})
            .gives(whole("-9999 -9999 -9999 -9999"), "out.asc"),
        asc("only the first of several inputs", "a_d.dat b_d.dat",
            WITH(one_time, {{"b_d.dat", depths({at_2})}}))
            .gives(grid_of("6.5 16.5 26.5 36.5\n5.5 15.5 25.5 35.5\n"), "out.asc")
            .says("WARNING - Only one file for --grid option")));

FileRun refused(const std::string& name, const std::string& arguments, const Files& files,
                const std::string& line) {
  return FileRun(name, arguments, files).says(line);
}
FileRun bad_value(const std::string& option) {
  return refused("value of " + option, option + " a_d.dat", one_time,
                 "ERROR - Reading value of option: \"" + option + "\"");
}

INSTANTIATE_TEST_SUITE_P(
    RefusedRasters, FileRuns,
    ::testing::Values(
        bad_value("--grid"), bad_value("--grid="), bad_value("--grid=0"), bad_value("--grid=-5"),
        bad_value("--grid=5m"), bad_value("--grid=nan"), bad_value("--grid=inf"),
        bad_value("--grid=1,5"), bad_value("--epsg=1023"), bad_value("--epsg=32767"),
        bad_value("--epsg=28355.5"), bad_value("--points="),
        refused("another case", "--Grid=5 a_d.dat", one_time,
                "ERROR - Incorrect flag specified: \"--Grid=5\""),
        refused("both operations", "--grid=5 --points=p.csv a_d.dat", one_time,
                "ERROR - Multiple operational flags specified, expecting 1."),
        refused("another extension", "--grid=5 -out x.png a_d.dat", one_time,
                "ERROR - Output of --grid is .tif or .asc: \"x.png\""),
        refused("another extension of points", "--points=p.csv -out x.txt a_d.dat", one_time,
                "ERROR - Output of --points is .csv: \"x.txt\""),
        refused("too many cells", "--grid=1e-9 a_d.dat", one_time,
                "ERROR - Cells are too small, the raster would have more than 2147483647 a side: "
                "\"1e-9\""),
        refused("far too many cells", "--grid=1e-320 a_d.dat", one_time,
                "ERROR - Cells are too small, the raster would have more than 2147483647 a side: "
                "\"1e-320\""),
        refused("many output times in an .asc grid", "--grid=1 -out x.asc a_d.dat", series,
                "ERROR - An .asc grid holds one output time, use -t."),
        refused("no such output time", "--grid=1 -t7 a_d.dat", series,
                "ERROR - Could not find specified timestep in .dat file."),
        refused("no output times", "--grid=1 a_d.dat", {{"a.2dm", mesh}, {"a_d.dat", depths({})}},
                "ERROR - No output times in \"a_d.dat\""),
        refused("no mesh", "--grid=1 a_d.dat", {{"a_d.dat", depths({at_1})}},
                "ERROR - Could not open file: \"a.2dm\""),
        refused(
            "a mesh with other nodes", "--grid=1 a_d.dat",
            {{"a.2dm", mesh + "ND 7 5 5 0\n"}, {"a_d.dat", depths({at_1})}},
            "ERROR - Number of nodes does not match results file. Expecting number of nodes: 6"),
        refused(
            "coordinates whose difference overflows", "--grid=1e308 a_d.dat",
            {{"a.2dm", "MESH2D\nND 1 -1e308 0 0\nND 2 1e308 0 0\nND 3 0 1 0\nE3T 1 1 2 3 1\n"},
             {"a_d.dat", DAT_FILE({3, 1}, "Depth", {{1, {1}, {1, 1, 1}}})}},
            "ERROR - Reading file \"a.2dm\": expected coordinates of up to 1e15 m, found -1e+308"),
        refused("the mesh as output", "--grid=1 -2dm a.tif -out a.tif a_d.dat",
                {{"a.tif", mesh}, {"a_d.dat", depths({at_1})}},
                "ERROR - Output file is also an input file: \"a.tif\""),
        refused("the points as output", "--points=p.csv -out p.csv a_d.dat",
                WITH(one_time, {{"p.csv", "name,x,y\na,1,1\n"}}),
                "ERROR - Output file is also an input file: \"p.csv\"")));

FileRun points(const std::string& name, const std::string& list, const Files& files,
               const std::string& arguments = "a_d.dat") {
  return FileRun(name, "--points=p.csv " + arguments, WITH(files, {{"p.csv", list}}));
}

INSTANTIATE_TEST_SUITE_P(
    Points, FileRuns,
    ::testing::Values(
        points("a row per ordinary output time, empty where it is dry",
               "name,x,y\nA,1,1\nB,3,0.5\n", series)
            .gives("time,A,B\n1,11,30.5\n2,,1\n", "a_d(points).csv")
            .says("Opertational flag --points (time series)")
            .says("Skipping times above 99,998, time found: 99999"),
        points("the output time asked for", "name,x,y\nA,1,1\n", series, "-t99999 a_d.dat")
            .gives("time,A\n99999,11\n", "a_d(points).csv"),
        points("a point on an edge belongs to the wet element", "name,x,y\nA,2,1\n", series)
            .gives("time,A\n1,21\n2,1\n", "a_d(points).csv"),
        points("components of vectors", "name,x,y\nA,1,1\n",
               {{"a.2dm", mesh},
                {"a_V.dat",
                 DAT_FILE(vectors, "V", {{1, {1, 1}, {3, 4, 3, 4, 3, 4, 3, 4, 3, 4, 3, 4}}})}},
               "-out s.csv a_V.dat")
            .gives("time,A_x,A_y\n1,3,4\n", "s.csv"),
        points("columns in any order and case, others too, quotes, a byte order mark",
               "\xEF\xBB\xBFY, remark ,NAME,X\r\n1,,\"A, \"\"b\"\"\",1\r\n\r\n", one_time)
            .gives("time,\"A, \"\"b\"\"\"\n1,11\n", "a_d(points).csv"),
        points("points outside and on dry land are named",
               "name,x,y\nfar,1e308,1\ndry,1,1\nwet,3,1\nwest,-1e308,1\n",
               {{"a.2dm", mesh}, {"a_d.dat", depths({at_2})}})
            .gives("time,far,dry,wet,west\n2,,,1,\n", "a_d(points).csv")
            .says("WARNING - Point is outside the mesh: \"far\"")
            .says("WARNING - Point is dry at all times: \"dry\""),
        points("a file without output times", "name,x,y\nA,1,1\n",
               {{"a.2dm", mesh}, {"a_d.dat", depths({})}})
            .gives("time,A\n", "a_d(points).csv")));

FileRun bad_points(const std::string& list, const std::string& reason) {
  return points("points: " + reason, list, one_time)
      .says("ERROR - Reading file \"p.csv\": " + reason);
}

INSTANTIATE_TEST_SUITE_P(
    RefusedPoints, FileRuns,
    ::testing::Values(
        bad_points("", "row 1: expected a header with the columns name, x and y, found nothing"),
        bad_points("name,x\na,1\n", "row 1: expected a column y, found none"),
        bad_points("a,1,1\n", "row 1: expected a column name, found none"),
        bad_points("name,x,y,X\na,1,1,1\n", "row 1: expected one column x, found several"),
        bad_points("name,x,y\n\n",
                   "row 2: expected a point in each row under the header, found none"),
        bad_points("name,x,y\na,1,1\nb,2,1\na,3,1\n",
                   "row 4: expected every name once, found \"a\" again"),
        bad_points("name,x,y\na,1,1\n\n,2,1\n", "row 4: expected a name, found none"),
        bad_points("name,x,y\na,1\n", "row 2: expected a number in column y, found \"\""),
        bad_points("name,x,y\na,\"1,5\",1\n",
                   "row 2: expected a number in column x, found \"1,5\""),
        bad_points("name,x,y\na,1,nan\n", "row 2: expected a number in column y, found \"nan\""),
        bad_points("name,x,y\n\"a,1,1\n", "row 2: expected a closing quotation mark, found none"),
        points("no such file", "", one_time, "--points=q.csv a_d.dat")
            .says("ERROR - Could not open file: \"q.csv\"")));

// ---- Few points on a long strip of squares, of which not all is read ----

constexpr int strip_cells = 60000;

std::string strip_mesh() {
  std::string text = "MESH2D\n";
  for (int i = 0; i <= strip_cells; ++i) {
    const std::string x = std::to_string(i), id = std::to_string(2 * i + 1);
    text += "ND " + id + ' ' + x + " 0 0\nND " + std::to_string(2 * i + 2) + ' ' + x + " 1 0\n";
    if (i == strip_cells) break;
    const auto corner = [&](int k) { return ' ' + std::to_string(2 * i + k); };
    text += "E4Q " + std::to_string(i + 1) + corner(1) + corner(3) + corner(4) + corner(2) + " 1\n";
  }
  return text;
}

// x + y + hours at the nodes; of vectors that is y's component, and x's is its negative. The cells
// from x = 30000 on are dry at 2 hours.
std::string strip_results(bool is_vector) {
  std::vector<DatTime> times;
  for (const float hours : {1.0F, 2.0F}) {
    DatTime step{hours, std::vector<int>(strip_cells, 1), {}};
    if (hours == 2) std::fill(step.statuses.begin() + 30000, step.statuses.end(), 0);
    for (int node = 0; node < 2 * strip_cells + 2; ++node) {
      const float value = static_cast<float>(node / 2 + node % 2) + hours;
      if (is_vector) step.values.push_back(-value);
      step.values.push_back(value);
    }
    times.push_back(step);
  }
  return DAT_FILE({2 * strip_cells + 2, strip_cells, is_vector}, "a", times);
}

TEST(FewPoints, have_the_values_around_them_alone) {
  const Workspace folder;
  folder.write("a.2dm", strip_mesh());
  folder.write("p.csv", "name,x,y\nfirst,0,0\nlast,60000,1\nwet,29999.5,0.5\ndry,30000.5,0.25\n");
  folder.write("a_d.dat", strip_results(false));
  RUN(folder, WORDS("-b --points=p.csv a_d.dat"));
  EXPECT_EQ(folder.read("a_d(points).csv"),
            "time,first,last,wet,dry\n1,1,60002,30001,30001.75\n2,2,,30002,\n");
  folder.write("a_V.dat", strip_results(true));
  RUN(folder, WORDS("-b --points=p.csv a_V.dat"));
  EXPECT_EQ(folder.read("a_V(points).csv"),
            "time,first_x,first_y,last_x,last_y,wet_x,wet_y,dry_x,dry_y\n"
            "1,-1,1,-60002,60002,-30001,30001,-30001.75,30001.75\n"
            "2,-2,2,,,-30002,30002,,\n");
}

// ---- XMDF, and what a failed run leaves ----

TEST(RasterRuns, xmdf_without_activity_is_wet_everywhere) {
  const Workspace folder;
  folder.write("a.2dm", mesh);
  MAKE_XMDF(folder, "a.xmdf", {{"a/Temporal/Depth", shape, {{1, {}, plane}}}});
  const RunResult run = RUN(folder, WORDS("-b --grid=1 -typed -out x.asc a.xmdf"));
  EXPECT_EQ(folder.read("x.asc"), grid_of("6.5 16.5 26.5 36.5\n5.5 15.5 25.5 35.5\n"))
      << run.output;
}

// As an engine leaves them that writes no other output times.
TEST(RasterRuns, stored_extremes_are_taken_where_there_is_nothing_else) {
  const Workspace folder;
  folder.write("a.2dm", mesh);
  folder.write("p.csv", "name,x,y\nA,0,0\n");
  MAKE_XMDF(folder, "a.xmdf",
            {{"a/Maximums/Depth", shape, {{99999, {}, plane}}},
             {"a/Minimums/Depth", shape, {{-99999, {}, plane}}}});
  const RunResult run = RUN(folder, WORDS("-b --points=p.csv -typed -out p_out.csv a.xmdf"));
  EXPECT_EQ(folder.read("p_out.csv"), "time,A\n99999,0\n-99999,0\n") << run.output;
  MAKE_XMDF(folder, "b.xmdf", {{"b/Maximums/Depth", shape, {{99999, {}, plane}}}});
  for (const std::string time : {"", "-t99999 "}) {
    RUN(folder, WORDS("-b --grid=1 -typed -2dm a.2dm " + time + "-out x.asc b.xmdf"));
    EXPECT_EQ(folder.read("x.asc"), grid_of("6.5 16.5 26.5 36.5\n5.5 15.5 25.5 35.5\n")) << time;
    std::filesystem::remove(folder.path("x.asc"));
  }
}

TEST(RasterRuns, results_per_cell_are_constant_in_it) {
  const std::string fv = "MESH2D\n" + mesh.substr(mesh.find("ND"));
  const DatShape cells{2, 2};
  const DatTime step{1, {0, 1}, {7, 9}};
  const Workspace folder;
  folder.write("a.2dm", fv);
  folder.write("a_d.dat", DAT_FILE(cells, "Depth", {step}));
  MAKE_XMDF(folder, "a.xmdf", {{"a/Temporal/Depth", cells, {step}}});
  RUN(folder, WORDS("-b --grid=1 -out dat.asc a_d.dat"));
  EXPECT_EQ(folder.read("dat.asc"), whole("7 7 9 9"));
  RUN(folder, WORDS("-b --grid=1 -typed -out xmdf.asc a.xmdf"));
  EXPECT_EQ(folder.read("xmdf.asc"), whole("7 7 9 9"));
  folder.write("p.csv", "name,x,y\nA,0.5,1\n");
  RUN(folder, WORDS("-b --points=p.csv a_d.dat"));
  EXPECT_EQ(folder.read("a_d(points).csv"), "time,A\n1,7\n");
}

class FailedRasters : public ::testing::TestWithParam<std::string> {};

TEST_P(FailedRasters, an_earlier_output_stays) {
  const std::string extension = GetParam();
  const std::string output = "x" + extension;
  std::string cut = depths({at_1, at_1});
  cut.resize(cut.size() - 10);
  const Workspace folder;
  folder.write("a.2dm", mesh);
  folder.write("a_d.dat", cut);
  folder.write("p.csv", "name,x,y\nA,1,1\n");
  folder.write(output, "earlier");
  const std::string option = extension == ".csv" ? "--points=p.csv" : "--grid=1";
  const RunResult run = RUN(folder, WORDS("-b " + option + " -out " + output + " a_d.dat"));
  EXPECT_EQ(run.count_lines_with("ERROR - Reading file \"a_d.dat\""), 1) << run.output;
  EXPECT_EQ(folder.read(output), "earlier");
}

INSTANTIATE_TEST_SUITE_P(Formats, FailedRasters, ::testing::Values(".tif", ".asc", ".csv"),
                         [](const auto& test) { return test.param.substr(1); });

}  // namespace
}  // namespace quillet::testing
