// Who reads ahead begins where it gains, comes to the end, and can be ended before.
#include "support/reading_ahead.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "in_crew_of.h"
#include "program_runner.h"

namespace quillet {
namespace {

constexpr std::int64_t mebibyte = std::int64_t{1} << 20;
constexpr ReadingAheadLimits any_disk{mebibyte, 8 * mebibyte, std::chrono::microseconds(0),
                                      std::chrono::hours(1)};

class CrewsReadingAhead : public ::testing::Test {
 protected:
  CrewsReadingAhead() { folder.write("f", std::string(12 * mebibyte, 'x')); }

  bool begins(int threads, const FileStretch& stretch, const ReadingAheadLimits& limits) {
    bool has_begun = false;
    test::in_crew_of(threads, [&] { has_begun = ReadingAhead(stretch, limits).has_begun(); });
    return has_begun;
  }

  testing::Workspace folder;
  std::string file = folder.path("f").string();
};

TEST_F(CrewsReadingAhead, BeginWhereItGains) {
  ReadingAheadLimits slow_disk = any_disk;
  slow_disk.longest_wait = std::chrono::microseconds(-1);
  ReadingAheadLimits in_memory = any_disk;
  in_memory.shortest_wait = std::chrono::hours(1);
  EXPECT_TRUE(begins(2, {file, 100, 12 * mebibyte}, any_disk));
  EXPECT_FALSE(begins(1, {file, 100, 12 * mebibyte}, any_disk));
  EXPECT_FALSE(begins(2, {file, 100, 12 * mebibyte}, slow_disk));
  EXPECT_FALSE(begins(2, {file, 100, 12 * mebibyte}, in_memory));
  EXPECT_FALSE(begins(2, {file, 12 * mebibyte - 100, 12 * mebibyte}, any_disk));
  EXPECT_FALSE(begins(2, {}, any_disk));
  EXPECT_FALSE(begins(2, {folder.path("none").string(), 0, 12 * mebibyte}, any_disk));
}

TEST_F(CrewsReadingAhead, EndAtTheMostOrWithTheFile) {
  test::in_crew_of(2, [&] {
    for (const auto& [begin, expected_end] :
         {std::pair(5, 5 + 8 * mebibyte),
          std::pair(static_cast<int>(7 * mebibyte), 12 * mebibyte)}) {
      const ReadingAhead ahead({file, begin, 12 * mebibyte}, any_disk);
      const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(60);
      while (ahead.position() < expected_end && std::chrono::steady_clock::now() < give_up) {
        std::this_thread::yield();
      }
      EXPECT_GE(ahead.position(), expected_end);
      EXPECT_LT(ahead.position(), expected_end + mebibyte);
    }
  });
}

}  // namespace
}  // namespace quillet
