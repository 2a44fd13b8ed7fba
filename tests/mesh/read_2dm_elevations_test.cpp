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

TEST(Read2dmElevations, files_of_another_mesh_and_bad_lines_end_the_run) {
  const std::string close(test::close_lines);
  const std::string on_line =
      "...reading .2dm file\nERROR - Reading .2dm file from following line in .2dm file\n";
  EXPECT_EQ(console_of_reading(cards, 2, 3),
            "...reading .2dm file\n"
            "ERROR - .2dm file is incompatible with .dat file whilst reading node elevations\n"
            "   Found in \"" +
                test::text_file("mesh.2dm", cards) + "\": node 3, expected 2 nodes at most.\n" +
                std::string(test::other_mesh_help) + close);
  EXPECT_EQ(console_of_reading(cards, 3, 1), on_line + "E4Q 2 1 2 3 2\n" + close);
  for (const std::string line :
       {"ND 1 0 0", "ND -1 0 0 0", "E3T 1 1 2", "E3T 1 1 2 4", "E3T 0 1 2 3"}) {
    EXPECT_EQ(console_of_reading(line, 3, 1), on_line + line + "\n" + close);
  }
}

// Whether the number of elements is known or not: their cards are read.
TEST(Read2dmElevations, ids_that_stand_twice_and_bad_elements_end_the_run) {
  for (const std::optional<std::int32_t> cells :
       {std::optional(3), std::optional<std::int32_t>()}) {
    EXPECT_NE(console_of_reading(cards + "ND 1 0 0 0\n", 3, cells)
                  .find(": expected every node id once, found node 1 again\n"),
              std::string::npos);
    EXPECT_NE(console_of_reading(cards + "E3T 2 1 2 3\n", 3, cells)
                  .find(": expected every element id once, found element 2 again\n"),
              std::string::npos);
    for (const std::string line : {"E3T 3 1 2", "E4Q 3 1 2 3", "E4Q 3 1 2 3 0", "E3T 3 1 2 4",
                                   "E4Q 3 1 2 3 x", "E3T 0 1 2 3", "E3T -1 1 2 3"}) {
      EXPECT_NE(console_of_reading(cards + line, 3, cells).find("\n" + line + "\n"),
                std::string::npos)
          << line;
    }
  }
  const auto far = std::to_string(2147483647);
  const std::string twice = "E3T " + far + " 1 2 3\nE3T " + far + " 1 2 3\n";
  EXPECT_NE(console_of_reading(cards + twice, 3, std::nullopt).find("found element " + far),
            std::string::npos);
}

}  // namespace
}  // namespace quillet
