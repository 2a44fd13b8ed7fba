// Runs started from a .sup file: its results, its mesh, the names they get.
#include "program/file_runs.h"

namespace quillet::testing {
namespace {

constexpr DatShape shape{4, 2};
const std::string nodes = "MESH2D\nND 1 0 0 0\nND 2 1 0 0\nND 3 0 1 0\nND 4 1 1 0\n";
const DatTime last{9, {1, 1}, {9, 9, 9, 9}};
// By the wrong mesh node 1 would take part in the place of node 4.
const Files model{
    {"in/geo/mesh.2dm", nodes + "E3T 1 1 2 3 1\nE3T 2 2 3 4 1\n"},
    {"in/one.2dm", nodes + "E3T 1 1 2 3 1\nE3T 2 1 2 3 1\n"},
    {"in/one_h.dat", DAT_FILE(shape, "data", {{1, {0, 1}, {1, 5, 3, 4}}, last})},
    {"in/sub/two levels_h.dat", DAT_FILE(shape, "data", {{1, {0, 1}, {2, 2, 6, 2}}, last})}};
const std::string maxima =
    DAT_FILE(shape, "Max Value", {{111111, {0, 1}, {0, 5, 6, 4}}, {222222, {0, 1}, {0, 1, 2, 1}}});
const std::string data = "DATA \"one_h.dat\"\nDATA \"sub/two levels_h.dat\"\n";
const std::string mesh_used = "2dm filename: \"in/geo/mesh.2dm\"";
const std::string output = "in/m(maxmax).dat";

// Up to column 1000 with the keyword before it.
std::string long_name() {
  std::string name = "one_h.dat";
  while (name.size() < 995) name = "./" + name;
  return name;
}

FileRun sup(const std::string& name, const std::string& arguments, const std::string& text) {
  return FileRun(name, arguments, WITH(model, {{"in/m.sup", text}}));
}

INSTANTIATE_TEST_SUITE_P(
    SupRuns, FileRuns,
    ::testing::Values(
        sup("mesh and results stand beside it; the output has its name", "-max in/m.sup",
            "SUPER\nMESH2D \"geo/mesh.2dm\"\n" + data)
            .gives(maxima, output)
            .says(mesh_used)
            .says("Extracting results files from .sup file....")
            .says("   File  2: in/sub/two levels_h.dat"),
        sup("its mesh prevails over -2dm", "-max -2dm in/one.2dm in/m.sup",
            "MESH2D geo/mesh.2dm\n" + data)
            .gives(maxima, output)
            .says(mesh_used),
        sup("keywords in any case, backslashes, CR LF, other lines", "-max in/m.sup",
            "data one_h.dat\r\nBAT x\r\nData 'sub\\two levels_h.dat'\r\nmesh2d geo\\mesh.2dm\r\n")
            .gives(maxima, output),
        sup("lines end after 1000 characters", "-max in/m.sup",
            "MESH2D geo/mesh.2dm\nDATA " + long_name() + "x/y_h.dat\nDATA sub/two levels_h.dat\n")
            .gives(maxima, output)
            .says("   File  1: in/" + long_name()),
        sup("without a mesh -2dm holds", "-max -2dm in/geo/mesh.2dm in/m.sup", data)
            .gives(maxima, output)
            .says(mesh_used),
        sup("without either each result has its own", "-max -nowetdry -t9 in/m.sup", data)
            .gives(DAT_FILE(shape, "Max Value",
                            {{111111, {1, 1}, {9, 9, 9, 9}}, {222222, {1, 1}, {1, 1, 1, 1}}}),
                   output)
            .says("2dm filename: \"in/one.2dm\"")
            .says("2dm filename: \"in/sub/two levels.2dm\""),
        sup("operations on one input take the first", "-trim4 in/m.sup", data)
            .gives(DAT_FILE(shape, "trim4", {{1, {0, 1}, {1, 4, 3, 4}}, {9, {1, 1}, {4, 4, 4, 4}}}),
                   "in/m(trim4).dat")
            .says("WARNING - Only one file for -trim option"),
        sup("no results", "-max in/m.sup", "MESH2D geo/mesh.2dm\n")
            .says("Found: 0 data file in .sup file.")
            .says("ERROR - No input files specified."),
        sup("an entry that is missing", "-max in/m.sup", "DATA none_h.dat\n")
            .says("ERROR - Could not open file: \"in/none_h.dat\""),
        sup("alone, where it stands first", "-max in/m.sup in/one_h.dat", data)
            .says("ERROR - If using .sup file, there must be only one input file."),
        FileRun("its mesh is never written over", "-max m.sup -out m.dat",
                {{"m.sup", "MESH2D m.dat\nDATA one_h.dat\n"},
                 {"m.dat", model.at("in/geo/mesh.2dm")},
                 {"one_h.dat", model.at("in/one_h.dat")}})
            .says("ERROR - Output file is also an input file: \"m.dat\"")),
    NameOfCase{});

}  // namespace
}  // namespace quillet::testing
