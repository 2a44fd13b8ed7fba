#include "operations/duration_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace quillet {
namespace {

constexpr double never = -99999.0;

// Values of many nodes at random output times; every fourth value is one of a few, so that values
// often equal each other and the cutoffs.
struct Series {
  std::vector<double> times;
  std::vector<std::vector<float>> values;  // per output time
  std::int64_t nodes = 0;
};

Series random_series(std::uint32_t seed, std::int64_t nodes, int count) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<float> real(-2, 2);
  std::uniform_real_distribution<double> hours(0, 3);
  Series series{{0.5}, {}, nodes};
  for (int i = 0; i < count; ++i) {
    if (i > 0) series.times.push_back(series.times.back() + (i % 5 == 0 ? 0 : hours(random)));
    auto& values = series.values.emplace_back(nodes);
    for (float& value : values) {
      value = random() % 4 == 0 ? static_cast<float>(random() % 4) * 0.5F : real(random);
    }
  }
  return series;
}

std::vector<double> durations(const Series& series, float cutoff) {
  std::vector<double> hours(series.nodes, 0.0);
  for (std::size_t i = 1; i < series.times.size(); ++i) {
    ADD_DURATION_ABOVE(series.nodes, series.values[i - 1].data(), series.values[i].data(),
                       series.times[i - 1], series.times[i], cutoff, hours.data());
  }
  return hours;
}

std::vector<double> first_times(const Series& series, float increase) {
  std::vector<double> hours(series.nodes, never);
  for (std::size_t i = 1; i < series.times.size(); ++i) {
    NOTE_FIRST_INCREASE(series.nodes, series.values[0].data(), series.values[i - 1].data(),
                        series.values[i].data(), series.times[i - 1], series.times[i], increase,
                        never, hours.data());
  }
  return hours;
}

// Where on the way from `a` (0) to `b` (1) the level is met; a and b lie on its two sides.
double meeting(double a, double b, double level) {
  return std::fabs(level - a) / (std::fabs(level - a) + std::fabs(b - level));
}

double naive_duration(const Series& series, std::int64_t node, double cutoff) {
  double sum = 0;
  for (std::size_t i = 1; i < series.times.size(); ++i) {
    const double a = series.values[i - 1][node];
    const double b = series.values[i][node];
    const double hours = series.times[i] - series.times[i - 1];
    if (a > cutoff && b > cutoff) {
      sum += hours;
    } else if (a > cutoff) {
      sum += hours * meeting(a, b, cutoff);
    } else if (b > cutoff) {
      sum += hours * (1 - meeting(a, b, cutoff));
    }
  }
  return sum;
}

double naive_first_time(const Series& series, std::int64_t node, double increase) {
  const double level = series.values[0][node] + increase;
  if (series.values[0][node] > level) return series.times[0];
  for (std::size_t i = 1; i < series.times.size(); ++i) {
    const double a = series.values[i - 1][node];
    const double b = series.values[i][node];
    if (b <= level) continue;
    const double hours = series.times[i] - series.times[i - 1];
    return series.times[i - 1] + hours * meeting(a, b, level);
  }
  return never;
}

class RandomSeries : public ::testing::TestWithParam<float> {};

TEST_P(RandomSeries, AgreesWithTheNaiveLoop) {
  const Series series = random_series(11, 1003, 40);
  const std::vector<double> above = durations(series, GetParam());
  const std::vector<double> first = first_times(series, GetParam());
  for (std::int64_t node = 0; node < series.nodes; ++node) {
    EXPECT_NEAR(above[node], naive_duration(series, node, GetParam()), 1e-11) << node;
    EXPECT_NEAR(first[node], naive_first_time(series, node, GetParam()), 1e-11) << node;
  }
}
INSTANTIATE_TEST_SUITE_P(All, RandomSeries, ::testing::Values(-0.5F, 0.0F, 0.5F, 1.1F, 5.0F));

// Crossings at an output time itself, rests on the cutoff, wet at one output time only, never.
TEST(Durations, CountEveryCrossingOnce) {
  struct Node {
    std::vector<float> values;  // at 0, 1, 3 and 3.5 hours
    double above_1;             // hours
    double first;               // more than 1 above the first value
  };
  const std::vector<Node> nodes{
      {{0, 1, 2, 1}, 2.5, 1},      // reaches 1 at an output time, leaves it at one
      {{0, 1, 1, 1}, 0, never},    // rests on it
      {{1, 1, 1, 2}, 0.5, never},  // leaves its rest late; rises by 1, not by more
      {{0, 1, 0, 0}, 0, never},    // touches it
      {{0, 0, 4, 0}, 1.875, 1.5},  // above once: 1.5 of the 2 hours up, 0.375 of the 0.5 down
      {{2, 2, 2, 2}, 3.5, never},  // above throughout
      {{3, 1, 1, 5}, 1.5, 3.375},  // falls onto it, rests, rises from it
      {{1, 1, 3, 3}, 2.5, 2},      // equal neighbours on both sides of the rise
      {{-4, 0, 0, 0}, 0, 0.25}};
  Series series{{0, 1, 3, 3.5}, {{}, {}, {}, {}}, std::ssize(nodes)};
  for (const Node& node : nodes) {
    for (std::size_t i = 0; i < 4; ++i) series.values[i].push_back(node.values[i]);
  }
  const std::vector<double> above = durations(series, 1), first = first_times(series, 1);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    EXPECT_DOUBLE_EQ(above[i], nodes[i].above_1) << i;
    EXPECT_DOUBLE_EQ(first[i], nodes[i].first) << i;
  }
}

}  // namespace
}  // namespace quillet
