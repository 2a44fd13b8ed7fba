// -max and -min of water levels: only nodes of active cells take part.
#include "mesh/mesh_test_files.h"
#include "program/file_runs.h"

namespace quillet::testing {
namespace {

using Values = std::vector<float>;

// Cell 1 is the triangle 1 2 3, cell 2 the quadrilateral 2 4 5 3, cell 3 the triangle 4 5 7. Node 6
// belongs to none.
constexpr DatShape shape{7, 3};
const std::string mesh =
    "MESH2D\nND 1 0 0 0\nND 2 1 0 0\nND 3 0 1 0\nND 4 2 0 0\nND 5 1 1 0\nND 6 9 9 0\nND 7 3 0 0\n"
    "E3T 1 1 2 3 1\nE4Q 2 2 4 5 3 1\nE3T 3 4 5 7 1\n";
const Values values{1, 2, 3, 4, 5, 6, 7};
const Values below{-1, -2, -3, -4, -5, -6, -7};
const DatTime last{9, {1, 1, 1}, Values(7, 90)};

std::string levels(const std::vector<DatTime>& times) {
  return DAT_FILE(shape, "data", times);
}
Files one_file(const std::vector<DatTime>& times) {
  return {{"a.2dm", mesh}, {"a_h.dat", levels(times)}};
}
Files two_files(const std::vector<DatTime>& first, const std::vector<DatTime>& second) {
  return {{"a.2dm", mesh}, {"a_h.dat", levels(first)}, {"b_h.dat", levels(second)}};
}

std::string maps(const std::vector<int>& status, const Values& extremes, const Values& sources,
                 float time = 0, const DatShape& of = shape, const char* name = "Max Value") {
  std::vector<DatTime> written{{111111, status, extremes}, {222222, status, sources}};
  if (time > 0) written.push_back({333333, status, Values(extremes.size(), time)});
  return DAT_FILE(of, name, written);
}

// A triangle and a 9-node quadrilateral: nodes 1 to 9 and 1, 10, 11.
constexpr DatShape nine{11, 2};
Files nine_node_quad(int quad, int triangle) {
  std::string text = test::header_line(90);
  for (int id = 1; id <= 11; ++id) text += "ND " + std::to_string(id) + " 0 0 0 0 0 0 0\n";
  const DatTime step{1, {quad, triangle}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}};
  return {{"a.2dm", text + "E9Q 1 1 2 3 4 5 6 7 8 9 1 0 0 0\nE3T 2 1 10 11 1 0 0 0 TT\n"},
          {"a_h.dat", DAT_FILE(nine, "data", {step, step})}};
}

FileRun max(const std::string& name, const std::string& arguments, const Files& files) {
  return FileRun(name, "-max -out out.dat " + arguments, files);
}

const std::string reads_mesh = "...need to read .2dm file for _h data type";
const Files first_cell = one_file({{1, {1, 0, 0}, values}, last});
const std::string first_cell_maxima =
    maps({1, 0, 0}, {1, 2, 3, 0, 0, 0, 0}, {1, 1, 1, 0, 0, 0, 0}, 1);
const std::string plain_maxima = maps({1, 0, 0}, values, Values(7, 1), 1);

INSTANTIATE_TEST_SUITE_P(
    WaterLevelMaps, FileRuns,
    ::testing::Values(
        max("the corners of active cells; times are those of the file's own maximum", "a_h.dat",
            first_cell)
            .gives(first_cell_maxima)
            .says(reads_mesh),
        max("the fourth corner too; a status of -1 is active, one of 2 is not", "a_h.dat",
            one_file({{1, {2, -1, 0}, values}, last}))
            .gives(maps({2, 1, 0}, {0, 2, 3, 4, 5, 0, 0}, {0, 1, 1, 1, 1, 0, 0}, 1)),
        max("cells active at any time compared, whatever the last says", "a_h.dat",
            one_file({{1, {0, 0, 1}, values}, {2, {1, 0, 0}, below}, last}))
            .gives(maps({1, 0, 1}, {1, 2, 3, 4, 5, 0, 7}, {1, 1, 1, 1, 1, 0, 1}, 1)),
        FileRun("a minimum: cells active at every time", "-min -out out.dat a_h.dat",
                one_file({{1, {1, 1, 0}, below}, {2, {0, -1, 1}, values}, last}))
            .gives(maps({0, 1, 0}, {0, -2, -3, -4, -5, 0, 0}, {0, 1, 1, 1, 1, 0, 0}, 1, shape,
                        "Min Value")),
        max("a level from a cell that is dry in its file is not credited to another",
            "a_h.dat b_h.dat",
            two_files({{1, {1, 0, 0}, {1, 1, 1, 80, 80, 80, 80}}, last},
                      {{1, {0, 0, 1}, {90, 90, 90, 4, 5, 90, 7}}, last}))
            .gives(maps({1, 0, 1}, {1, 1, 1, 4, 5, 0, 7}, {1, 1, 1, 2, 2, 0, 2})),
        max("at one time", "-t9 a_h.dat b_h.dat",
            two_files({{1, {1, 1, 1}, Values(7, 50)}, {9, {1, 0, 0}, values}},
                      {{9, {0, 1, 0}, {9, 1, 4, 4, 4, 9, 9}}}))
            .gives(maps({1, 1, 0}, {1, 2, 4, 4, 4, 0, 0}, {1, 1, 2, 2, 2, 0, 0})),
        max("all nodes of a 9-node quadrilateral take part", "a_h.dat", nine_node_quad(1, 0))
            .gives(maps({1, 0}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0},
                        {1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0}, 1, nine)),
        max("and only the corners of the triangle beside it", "a_h.dat", nine_node_quad(0, 1))
            .gives(maps({0, 1}, {1, 0, 0, 0, 0, 0, 0, 0, 0, 10, 11},
                        {1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1}, 1, nine)),
        max("without the wet/dry test every node takes part, and no mesh is read",
            "-nowetdry a_h.dat", first_cell)
            .gives(plain_maxima)
            .never_says(reads_mesh),
        max("nor for finite-volume runs", "a_h.dat",
            {{"a_h.dat", DAT_FILE({2, 2}, "data", {{1, {1, 0}, {3, 4}}, {9, {1, 1}, {9, 9}}})}})
            .gives(maps({1, 0}, {3, 4}, {1, 1}, 1, {2, 2}))
            .never_says(reads_mesh),
        max("a mesh of other cells", "a_h.dat",
            WITH(first_cell, {{"a.2dm", mesh + "E3T 4 1 2 3 1\n"}}))
            .says("ERROR - Number of cells does not match results file. Expecting number of cells: "
                  "3\n   Found in \"a.2dm\": nodes 7, cells 4.\n   -2dm names the mesh of the "
                  "results; one that a .sup file names goes before it."),
        max("a missing mesh", "a_h.dat", {{"a_h.dat", first_cell.at("a_h.dat")}})
            .says("ERROR - Could not open file: \"a.2dm\"")),
    NameOfCase{});

}  // namespace
}  // namespace quillet::testing
