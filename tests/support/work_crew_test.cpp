// The crew by itself; what helpers do to files is the matter of their users' tests.
#include "support/work_crew.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <numeric>
#include <vector>

#include "in_crew_of.h"

namespace quillet {
namespace {

class Crews : public ::testing::TestWithParam<int> {};

// Each job has its own place to write, so that nothing but the crew keeps them apart.
TEST_P(Crews, DoEveryJobOnceBeforeItIsFinished) {
  test::in_crew_of(GetParam(), [] {
    constexpr std::size_t count = 500;
    std::vector<int> done(count);
    const auto jobs = std::make_unique<std::array<CrewJob, count>>();
    for (std::size_t i = 0; i < count; ++i) {
      (*jobs)[i].start([&done, i] { done[i] += static_cast<int>(i) + 1; });
      if (i % 7 != 6) continue;
      (*jobs)[i - 3].finish();
      EXPECT_EQ(done[i - 3], static_cast<int>(i) - 2);
    }
    for (std::size_t i = count; i-- > 0;) {
      (*jobs)[i].finish();
      EXPECT_EQ(done[i], static_cast<int>(i) + 1);
    }
  });
}

TEST_P(Crews, LeaveAloneWhatIsTakenBack) {
  test::in_crew_of(GetParam(), [] {
    for (int round = 0; round < 200; ++round) {
      auto value = std::make_unique<int>(0);
      CrewJob job;
      job.start([&value] { ++*value; });
      if (round % 2 == 0) job.take_back();
      job.take_back();  // of an idle job: nothing
      EXPECT_LE(*value, 1);
      value.reset();
      job.finish();
    }
  });
}

TEST_P(Crews, DoAJobAgainWhenItIsStartedAgain) {
  test::in_crew_of(GetParam(), [] {
    CrewJob job;
    int sum = 0;
    for (int i = 1; i <= 100; ++i) {
      job.start([&sum, i] { sum += i; });
      job.finish();
    }
    EXPECT_EQ(sum, 5050);
  });
}

// Whole files whose pieces others may fill in.
TEST_P(Crews, DoJobsThatShareTheirPieces) {
  test::in_crew_of(GetParam(), [] {
    constexpr std::size_t count = 40;
    using Pieces = std::array<int, 30>;
    std::vector<Pieces> done(count, Pieces{});
    const auto fill = [](Pieces& pieces) {
      std::array<CrewJob, 4> jobs;
      for (std::size_t first = 0; first < pieces.size(); first += jobs.size()) {
        const std::size_t end = std::min(first + jobs.size(), pieces.size());
        for (std::size_t i = first; i < end; ++i) {
          jobs[i - first].start_last([&pieces, i] { pieces[i] += static_cast<int>(i) + 1; });
        }
        for (CrewJob& job : jobs) job.finish();
      }
    };
    std::array<CrewJob, count> jobs;
    for (std::size_t i = 0; i < count; ++i) jobs[i].start([&fill, &done, i] { fill(done[i]); });
    for (CrewJob& job : jobs) job.finish();
    Pieces expected;
    std::iota(expected.begin(), expected.end(), 1);
    for (const Pieces& pieces : done) EXPECT_EQ(pieces, expected);
  });
}

INSTANTIATE_TEST_SUITE_P(Threads, Crews, ::testing::Values(1, 2, 3, 8));

}  // namespace
}  // namespace quillet
