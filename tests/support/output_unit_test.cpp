// Pieces that the crew fills are written in their order.
#include "support/output_unit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "in_crew_of.h"
#include "program_runner.h"

namespace quillet {
namespace {

class PiecesOfCrews : public ::testing::TestWithParam<int> {};

TEST_P(PiecesOfCrews, ComeInTheirOrder) {
  const testing::Workspace folder;
  std::mt19937 random(20261122);
  std::vector<std::string> pieces(60);
  std::string expected = "before\n";
  for (std::string& piece : pieces) {
    const bool is_full = random() % 4 == 0;
    piece.resize(is_full ? OutputUnit::piece_size : random() % OutputUnit::piece_size);
    std::generate(piece.begin(), piece.end(), [&] { return static_cast<char>(random()); });
    expected += piece;
  }
  test::in_crew_of(GetParam(), [&] {
    OutputUnit out(folder.path("f").string());
    out.write("before\n");
    out.write_pieces(std::ssize(pieces), [&](std::int64_t number, char* at) {
      const std::string& piece = pieces[static_cast<std::size_t>(number)];
      std::copy(piece.begin(), piece.end(), at);
      return piece.size();
    });
    out.write("after\n");
    out.complete();
  });
  EXPECT_TRUE(folder.read("f") == expected + "after\n");
}

INSTANTIATE_TEST_SUITE_P(Threads, PiecesOfCrews, ::testing::Values(1, 2, 3, 8));

}  // namespace
}  // namespace quillet
