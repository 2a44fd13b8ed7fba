#include "mesh/read_2dm_elevations.h"

#include <gtest/gtest.h>

#include <string>

#include "mesh_test_files.h"

namespace quillet {
namespace {

const std::string cards =
    "anything\n"
    "ND 1 0 0 10.5 1 nothing is read here\n"
    "ND 3 1 0 -11.5\n"
    "ND 2 1 1 1.25D1\n"
    "E4Q 2 1 2 3 2\n"
    "E3T 1 1 2 3\n"
    "E9Q 9 no values\n";

std::string console_of_reading(const std::string& text, std::int32_t nodes,
                               std::optional<std::int32_t> cells) {
  const std::string path = test::text_file("mesh.2dm", text);
  return test::console_of([&] {
    LargeArray<float> elevations;
    CornerArrays corners;
    READ_2DM_ELEVATIONS(InputUnit(path), elevations, nodes, corners, cells);
  });
}

TEST(Read2dmElevations, takes_elevations_and_corners_as_they_stand) {
  const InputUnit unit(test::text_file("mesh.2dm", cards));
  LargeArray<float> elevations;
  CornerArrays corners;
  const auto console =
      test::console_of_returning([&] { READ_2DM_ELEVATIONS(unit, elevations, 3, corners, 3); });
  EXPECT_EQ(console, "...reading .2dm file\n");
  EXPECT_EQ(elevations, (LargeArray<float>{10.5F, 12.5F, -11.5F}));
  EXPECT_EQ(corners[0], (std::vector<std::int32_t>{1, 1, 0}));
  EXPECT_EQ(corners[1], (std::vector<std::int32_t>{3, 2, 0}));
  EXPECT_EQ(corners[2], (std::vector<std::int32_t>{2, 3, 0}));
  EXPECT_EQ(corners[3], (std::vector<std::int32_t>{0, 2, 0}));
}

TEST(Read2dmElevations, missing_nodes_are_marked_and_warned_of) {
  const InputUnit unit(test::text_file("mesh.2dm", cards));
  LargeArray<float> elevations;
  CornerArrays corners;
  ASSERT_NE(std::freopen("/dev/null", "rb", stdin), nullptr);
  const auto console =
      test::console_of_returning([&] { READ_2DM_ELEVATIONS(unit, elevations, 4, corners, {}); });
  EXPECT_EQ(console,
            "...reading .2dm file\n"
            "WARNING - Did not read an elevation for all nodes from .2dm file.\n"
            "Press Enter to Continue\n");
  EXPECT_EQ(elevations, (LargeArray<float>{10.5F, 12.5F, -11.5F, -99999.0F}));
  EXPECT_TRUE(corners[0].empty());
}

TEST(Read2dmElevations, files_of_another_mesh_and_bad_lines_end_the_run) {
  const std::string close(test::close_lines);
  const std::string on_line =
      "...reading .2dm file\nERROR - Reading .2dm file from following line in .2dm file\n";
  EXPECT_EQ(console_of_reading(cards, 2, 3),
            "...reading .2dm file\n"
            "ERROR - .2dm file is incompatible with .dat file whilst reading node elevations\n" +
                close);
  EXPECT_EQ(console_of_reading(cards, 3, 1), on_line + "E4Q 2 1 2 3 2\n" + close);
  for (const std::string line :
       {"ND 1 0 0", "ND -1 0 0 0", "E3T 1 1 2", "E3T 1 1 2 4", "E3T 0 1 2 3"}) {
    EXPECT_EQ(console_of_reading(line, 3, 1), on_line + line + "\n" + close);
  }
  EXPECT_NE(console_of_reading(cards + "ND 1 0 0 0\n", 3, 3).find("found node 1 again"),
            std::string::npos);
}

}  // namespace
}  // namespace quillet
