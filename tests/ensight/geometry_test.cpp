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
  MESH_TYPE mesh;
  test::console_of_returning(
      [&] { LOAD_MESH(test::text_file("mesh.2dm", text), std::nullopt, std::nullopt, mesh); });
  return MAKE_ENSIGHT_MESH(std::move(mesh));
}

std::string written(const std::string& mesh_text, const Workspace& folder,
                    void (*write)(EnsightMesh&, const std::string&)) {
  EnsightMesh mesh = loaded(mesh_text);
  return test::console_of_returning([&] { write(mesh, folder.path("g.geo").string()); });
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
