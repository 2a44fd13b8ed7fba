#include "ensight/geometry.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>

#include "ensight/ensight_meshes.h"
#include "mesh/load_mesh.h"
#include "program_runner.h"

namespace quillet {
namespace {

using testing::Workspace;

EnsightMesh loaded(const std::string& text) {
  MESH_GEOMETRY_TYPE mesh;
  test::console_of_returning(
      [&] { LOAD_MESH(test::text_file("mesh.2dm", text), std::nullopt, std::nullopt, mesh); });
  return MAKE_ENSIGHT_MESH(std::move(mesh));
}

std::string written(const std::string& mesh_text, const Workspace& folder,
                    void (*write)(const EnsightMesh&, const std::string&, ExportSteps&)) {
  const EnsightMesh mesh = loaded(mesh_text);
  ExportSteps steps(0);
  return test::console_of_returning([&] { write(mesh, folder.path("g.geo").string(), steps); });
}

TEST(EnsightGeometry, TextFileConsoleAndLog) {
  const Workspace folder;
  const std::string console = written(test::standard_mesh(), folder, WRITE_ENSIGHT_GEO_TEXT);
  EXPECT_EQ(folder.read("g.geo"),
            "Converted from ORVANE .2dm file.\n"
            "Standard Resolution Output\n"
            "node id given\n"
            "element id given\n"
            "extents\n"
            " 0.00000E+00 0.30500E+02\n"
            " 0.00000E+00 0.10000E+02\n"
            "-0.50000E+00 0.60000E+01\n"
            "part\n"
            "         1\n"
            "2D ORVANE Elements\n"
            "coordinates\n"
            "         6\n"
            "         1\n         2\n         3\n         4\n         5\n         6\n"
            " 0.00000E+00\n 0.10000E+02\n 0.10000E+02\n 0.00000E+00\n 0.30500E+02\n 0.30500E+02\n"
            " 0.00000E+00\n 0.00000E+00\n 0.10000E+02\n 0.10000E+02\n 0.00000E+00\n 0.10000E+02\n"
            " 0.50000E+01\n 0.40000E+01\n 0.45000E+01\n 0.60000E+01\n-0.50000E+00\n 0.00000E+00\n"
            "tria3\n"
            "         2\n"
            "         1\n         2\n"
            "         1         4         3\n"
            "         1         3         2\n"
            "quad4\n"
            "         1\n"
            "         3\n"
            "         2         3         6         5\n");
  EXPECT_EQ(folder.read("g.geo.log"),
            "Conversion Log File.\n"
            "Shifted x coords by:      1000.00000\n"
            "Shifted y coords by:      2000.00000\n"
            "No Z shift applied.\n");
  EXPECT_EQ(console, "Creating Ensight Gold Geometry File: " + folder.path("g.geo").string() +
                         "\nDetermining extents...\nDone.\n"
                         "Opening Log File.\nOutputting coordinate shift into log file.\nDone.\n"
                         "Writing coordinates...\nDone.\n"
                         "Writing triangles (tria3)...\nDone writing triangles\n"
                         "Writing four node quadrilaterals (quad4)...\nDone writing quad4\n");
}

class Bytes {
 public:
  Bytes& text(std::string item) {
    item.resize(80, ' ');
    bytes += item;
    return *this;
  }
  template <typename Value>
  Bytes& numbers(std::initializer_list<Value> values) {
    for (const Value value : values) {
      char raw[sizeof value];
      std::memcpy(raw, &value, sizeof value);
      bytes.append(raw, sizeof value);
    }
    return *this;
  }
  const std::string& all() const { return bytes; }

 private:
  std::string bytes;
};

TEST(EnsightGeometry, BinaryFileByteByByte) {
  const Workspace folder;
  const std::string console = written(test::standard_mesh(), folder, WRITE_ENSIGHT_GEO_BINARY);
  Bytes expected;
  expected.text("Fortran Binary").text("Converted from ORVANE output");
  expected.text("Standard Resolution Output").text("node id given").text("element id given");
  expected.text("extents").numbers({0.0F}).numbers({30.5}).numbers({0.0F}).numbers({10.0});
  expected.numbers({-0.5F, 6.0F}).text("part").text("ORVANE").text("coordinates");
  expected.numbers({6, 1, 2, 3, 4, 5, 6}).numbers({0.0, 10.0, 10.0, 0.0, 30.5, 30.5});
  expected.numbers({0.0, 0.0, 10.0, 10.0, 0.0, 10.0})
      .numbers({5.0F, 4.0F, 4.5F, 6.0F, -0.5F, 0.0F});
  expected.text("tria3").numbers({2, 1, 2, 1, 4, 3, 1, 3, 2});
  expected.text("quad4").numbers({1, 3, 2, 3, 6, 5});
  EXPECT_EQ(folder.read("g.geo"), expected.all());
  EXPECT_EQ(console.find("Creating Ensight Gold Geometry File (Binary): "), 0);
  EXPECT_TRUE(folder.has("g.geo.log"));
}

// Viewers draw around the corners of a "quad8" and know its mid-sides by their place behind them.
TEST(EnsightGeometry, CornersOfNineNodeQuadrilateralsStandFirstInTheTextFormAlone) {
  const std::string mesh = test::header_line(83) +
                           "E9Q 1 1 2 3 4 5 6 7 8 9 1 0 0 0\n"
                           "E9Q 2 3 12 13 14 15 16 5 4 17 1 0 0 0\n" +
                           [] {
                             std::string nodes;
                             for (int id = 1; id <= 17; ++id) {
                               nodes += "ND " + std::to_string(id) + " 0 0 0 0 0 0 0\n";
                             }
                             return nodes;
                           }();
  const Workspace folder;
  written(mesh, folder, WRITE_ENSIGHT_GEO_TEXT);
  const std::string text = folder.read("g.geo");
  EXPECT_EQ(text.substr(text.find("quad8")),
            "quad8\n         2\n         1\n         2\n"
            "         1         3         5         7         2         4         6         8\n"
            "         3        13        15         5        12        14        16         4\n");
  written(mesh, folder, WRITE_ENSIGHT_GEO_BINARY);
  Bytes around;
  around.text("quad8").numbers({2, 1, 2, 1, 2, 3, 4, 5, 6, 7, 8, 3, 12, 13, 14, 15, 16, 5, 4});
  EXPECT_TRUE(folder.read("g.geo").ends_with(around.all()));
}

TEST(EnsightGeometry, CoordinatesFromAKilometreOnKeepTheirDecimals) {
  const Workspace folder;
  written(test::header_line(83) +
              "ND 1 100.0 7000000.0 -5 0 0 0 0\nND 2 1099.99 7001000.0 -2.5 0 0 0 0\n"
              "ND 3 120100.37 7999999.5 -3 0 0 0 0\nND 4 1000.0 8000000.0 -3 0 0 0 0\n",
          folder, WRITE_ENSIGHT_GEO_TEXT);
  const std::string text = folder.read("g.geo");
  EXPECT_NE(text.find("extents\n 0.00000E+00 120000.37000\n 0.00000E+00 0.10000E+07\n"
                      "-0.50000E+01-0.25000E+01\npart\n"),
            std::string::npos);
  EXPECT_NE(text.find("\n 0.00000E+00\n 0.99999E+03\n120000.37000\n 0.90000E+03\n"
                      " 0.00000E+00\n  1000.00000\n999999.50000\n 0.10000E+07\n"),
            std::string::npos)
      << text;
}

// A 9-node card where none may turns the element before it into one of kind 9 and counts as one
// that is never read.
TEST(EnsightGeometry, FiniteVolumeElementsOfKind9WithoutNineNodesAreDrawnByTheirCorners) {
  const Workspace folder;
  written(
      "MESH2D\nE4Q 1 1 2 3 4 1\nE9Q 2 1 2 3 4 5 6 7 8 9 1\n"
      "ND 1 0 0 1\nND 2 1 0 1\nND 3 1 1 1\nND 4 0 1 1\n",
      folder, WRITE_ENSIGHT_GEO_TEXT);
  const std::string text = folder.read("g.geo");
  EXPECT_EQ(text.find("Converted from ORVANE FV .2dm file.\nCell Centred Output (output == dat)\n"),
            0);
  EXPECT_EQ(text.substr(text.find("quad4")),
            "quad4\n         1\n         1\n         1         4         3         2\n");
}

}  // namespace
}  // namespace quillet
