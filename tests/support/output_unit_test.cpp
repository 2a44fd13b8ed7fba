// Items that the crew fills in are written in their order.
#include "support/output_unit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "in_crew_of.h"
#include "program_runner.h"

namespace quillet {
namespace {

class ItemsOfCrews : public ::testing::TestWithParam<int> {};

// From too few to share to several buffers, with the last piece and the last half cut anywhere.
TEST_P(ItemsOfCrews, ComeInTheirOrder) {
  const testing::Workspace folder;
  std::mt19937 random(20261122);
  for (const int count : {0, 1, 3000, 47662, 47663, 95325, 200000, 300001}) {
    const int size = 11 + static_cast<int>(random() % 40);
    std::string items(static_cast<std::size_t>(count * size), ' ');
    std::generate(items.begin(), items.end(), [&] { return static_cast<char>(random()); });
    test::in_crew_of(GetParam(), [&] {
      OutputUnit out(folder.path("f").string());
      out.write("before\n");
      out.write_items(count, size, [&](std::int64_t first, std::int64_t end, char* at) {
        std::copy(items.data() + first * size, items.data() + end * size, at);
      });
      out.write("after\n");
      out.complete();
    });
    EXPECT_TRUE(folder.read("f") == "before\n" + items + "after\n") << count << " of " << size;
  }
}

INSTANTIATE_TEST_SUITE_P(Threads, ItemsOfCrews, ::testing::Values(1, 2, 3, 8));

}  // namespace
}  // namespace quillet
