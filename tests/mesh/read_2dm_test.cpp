#include "mesh/read_2dm.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "mesh/load_mesh.h"
#include "mesh/node_kinds.h"
#include "mesh_test_files.h"

namespace quillet {
namespace {

using test::close_lines;
using test::console_of_loading;
using test::header_line;
using Slots = std::array<std::int32_t, 9>;

constexpr std::optional<std::int32_t> unknown;

// A quadrilateral with a triangle on its right edge.
const std::string full_cards =
    "MESHPART \"Main channel\"  \n"
    "ND 1 0.0 -5.0 10.5 1 0.1 0.2 0.3\n"
    "ND 2 1.0 0.0 11.5 0 0 0 1\n"
    "ND 3 1 1 1.25D1 2 0 0 1 rest\n"
    "ND 4,0,1.0,13.5,0,0,0,1\n"
    "ND5 2.0 0.5 14.5 0 0 0 1\r\n"
    "E4Q 1 1 2 3 4 7 21 22 -3\n"
    "E3T 2 2 5 3 8 23 24 5 'AB'\n"
    "NS 1 2 -3\n"
    "MAT 1 \"x\"\n";

MESH_TYPE load(const std::string& text, std::string* console = nullptr) {
  MESH_TYPE mesh;
  const std::string path = test::text_file("mesh.2dm", text);
  const auto lines = test::console_of_returning([&] { LOAD_MESH(path, unknown, unknown, mesh); });
  if (console != nullptr) *console = lines;
  return mesh;
}

std::string kinds_of(const MESH_TYPE& mesh) {
  std::string kinds;
  for (const auto& node : mesh.nodes) kinds += {node.kind[0], node.kind[1], '|'};
  return kinds;
}

TEST(Read2dm, full_form_fills_the_whole_record) {
  const MESH_TYPE mesh = load(header_line(83) + full_cards);
  EXPECT_EQ(mesh.geo_referencing, (std::array<double, 7>{1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 7.5}));
  ASSERT_EQ(mesh.nodes.size(), 5U);
  EXPECT_EQ(mesh.nodes[0].z, -89.75F);  // flagged: 10.5 - 100.25
  EXPECT_EQ(mesh.nodes[0].further, (std::array<float, 3>{0.1F, 0.2F, 0.3F}));
  EXPECT_EQ(mesh.nodes[2].z, 12.5F);
  EXPECT_EQ(mesh.nodes[2].elevation_flag, 2);
  EXPECT_EQ(mesh.nodes[3].y, 1.0);
  EXPECT_EQ(mesh.nodes[4].x, 2.0);
  EXPECT_EQ((std::array{mesh.x_minimum, mesh.x_maximum, mesh.y_minimum, mesh.y_maximum}),
            (std::array{0.0, 2.0, -5.0, 1.0}));
  ASSERT_EQ(mesh.elements.size(), 2U);
  EXPECT_EQ(mesh.elements[0].nodes, (Slots{1, 4, 3, 2}));
  EXPECT_EQ(mesh.elements[0].material, 7);
  EXPECT_EQ(mesh.elements[0].further, (std::array<std::int32_t, 2>{21, 22}));
  EXPECT_EQ(mesh.elements[0].byte, -3);
  EXPECT_EQ(mesh.elements[1].nodes, (Slots{2, 3, 5}));
  EXPECT_EQ(mesh.elements[1].code, (std::array<char, 2>{'A', 'B'}));
  EXPECT_EQ(kinds_of(mesh), "H |T |T |H |T |");
  ASSERT_EQ(mesh.mesh_parts.size(), 1U);
  EXPECT_EQ(mesh.mesh_parts[0].name, "\"Main channel\"");
}

TEST(Read2dm, length_of_the_header_line_tells_the_form) {
  const std::string nodes = "ND 1 0 0 1 1\nND 2 1 0 2\nND 3 0 1 3\n";
  std::string console;
  const MESH_TYPE older = load(header_line(82) + nodes + "E3T 1 1 2 3 9 21 22\n", &console);
  EXPECT_TRUE(
      console.starts_with("Reading geo-referencing information...\n"
                          "Detected pre 2005-09-AF .2dm format.\n...scanning"));
  EXPECT_EQ(older.z_offset, 0.0F);
  EXPECT_EQ(older.nodes[0].z, 1.0F);
  EXPECT_EQ(older.elements[0].further[1], 22);
  const MESH_TYPE fv = load("MESH2D   \t\r\n" + nodes + "E3T 1 1 2 3 9\n", &console);
  EXPECT_TRUE(console.starts_with(
      "No ORVANE geo-referencing information - assume ORVANE FV mesh...\n...scanning"));
  EXPECT_EQ(kinds_of(fv), "FV|FV|FV|");
  const MESH_TYPE short_of_values = load("MESH2D    8.5 9.5/");
  EXPECT_EQ(short_of_values.geo_referencing, (std::array<double, 7>{8.5, 9.5}));
}

std::string nine_node_mesh() {
  std::string text = header_line(90);
  for (int id = 1; id <= 9; ++id) text += "ND " + std::to_string(id) + " 0 0 0 0 0 0 0\n";
  return text + "E9Q 1 1 2 3 4 5 6 7 8 9 1 2 3 4\n";
}

TEST(Read2dm, nine_node_quadrilaterals_keep_their_direction) {
  const MESH_TYPE mesh = load(nine_node_mesh());
  EXPECT_TRUE(mesh.high_resolution);
  EXPECT_EQ(mesh.elements[0].nodes, (Slots{1, 3, 5, 7, 2, 4, 6, 8, 9}));
  EXPECT_EQ(mesh.elements[0].byte, 4);
  EXPECT_EQ(kinds_of(mesh), "H |UV|H |UV|H |UV|H |UV|C |");
  const auto console = console_of_loading(nine_node_mesh() + "E4Q 2 1 2 3 4 1 2 3 4\n");
  EXPECT_NE(console.find("Detected High Resolution Output\n"
                         "WARNING - Both 4 and 9 node quadrilateral elements detected.  This may "
                         "cause issues\nPress Enter to Continue\nRewinding"),
            std::string::npos);
}

TEST(Read2dm, a_line_that_cannot_be_read_is_shown_and_ends_the_run) {
  const std::string lines[] = {
      "NDX",
      "ND 6 0 0 0 0 0 0",
      "ND 6 0 0 0 0 0 0" + std::string(184, ' ') + "1 is cut",  // after 200 characters
      "ND 6 0 0/0 0 0 0 0",
      "ND 6,,0,0,0,0,0,0",
      "ND 6 0 0 nan 0 0 0 0",
      "ND 6 0 0 0 128 0 0 0",
      "ND 0 0 0 0 0 0 0 0",
      "ND -6 0 0 0 0 0 0 0",
      "ND 7 0 0 0 0 0 0 0",
      "ND 99999999999 0 0 0 0 0 0 0",
      "E3T 3 1 2 3 1 2 3 4",
      "E3T 3 1 2 3 1 2 3 4 'A",
      "E4Q 4 1 2 3 4 1 2 3 4",
      "E4Q 3 1 2 3 0 1 2 3 4",
      "E4Q 3 1 2 3 7 1 2 3 4",
      "E9Q 3 1 2 3 4 5 1 2 0 4 1 2 3 4",
  };
  for (const std::string& line : lines) {
    const auto console = console_of_loading(header_line(83) + full_cards + line + "\n");
    EXPECT_TRUE(
        console.ends_with("Element:\nERROR - Reading .2dm file from following line in .2dm file\n" +
                          line.substr(0, line.find("  ")) + "\n" + std::string(close_lines)))
        << line << '\n'
        << console;
  }
}

TEST(Read2dm, an_id_that_stands_twice_ends_the_run) {
  const auto node = console_of_loading(header_line(83) + full_cards + "ND 2 0 0 0 0 0 0 0\n");
  EXPECT_NE(node.find(": expected every node id once, found node 2 again\n"), std::string::npos);
  const auto cell = console_of_loading(header_line(83) + full_cards + "E4Q 2 1 2 3 4 1 2 3 4\n");
  EXPECT_NE(cell.find(": expected every element id once, found element 2 again\n"),
            std::string::npos);
}

TEST(Read2dm, headers_that_cannot_be_used_end_the_run) {
  const std::string no_mesh =
      "Did not find \"MESH2D\" in first 6 characters of first line\nFound: ";
  const std::string close(close_lines);
  EXPECT_EQ(console_of_loading(""), no_mesh + "\n" + close);
  EXPECT_EQ(console_of_loading("mesh2d \x1B[2J\t\n"), no_mesh + "mesh2d  [2J\n" + close);
  EXPECT_EQ(console_of_loading("MESH2D    1 2 3x\n"),
            "Reading geo-referencing information...\n"
            "ERROR - Reading .2dm file from following line in .2dm file\nMESH2D    1 2 3x\n" +
                close);
}

// Every cut and every damage leads to a mesh or to an ordinary end of the run.
TEST(Read2dm, files_cut_anywhere_and_damaged_files_end_in_order) {
  const std::string text = header_line(83) + full_cards + "E9Q 3 1 2 3 4 5 1 2 3 4 1 2 3 4\n";
  for (std::size_t length = 0; length < text.size(); ++length) {
    const auto console = console_of_loading(text.substr(0, length));
    EXPECT_TRUE(console.ends_with("Finished Reading .2dm file\n") || console.ends_with(close_lines))
        << length << '\n'
        << console;
  }
  std::mt19937 random(5);
  for (int round = 0; round < 100; ++round) {
    std::string damaged = text;
    for (int i = 0; i < 3; ++i)
      damaged[90 + random() % (text.size() - 90)] = static_cast<char>(random() % 256);
    console_of_loading(damaged);
  }
}

}  // namespace
}  // namespace quillet
