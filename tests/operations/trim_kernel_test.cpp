#include "operations/trim_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace quillet {
namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(TrimScalar, TakesTheLimitUnlessTheValueIsLess) {
  std::vector<float> values = {5, -7, 2, inf, -inf, nan, 1.999F, 2.001F, 0, -0.0F, 100};
  TRIM_SCALAR(values.data(), 10, 2.0F);
  EXPECT_EQ(values, (std::vector<float>{2, -7, 2, 2, -inf, 2, 1.999F, 2, 0, -0.0F, 100}));
}

void expect_trimmed(float x, float y, float limit, float expected_x, float expected_y) {
  const float old_x = x;
  const float old_y = y;
  TRIM_VECTOR(&x, &y, 1, limit);
  EXPECT_EQ(x, expected_x) << old_x << ' ' << old_y << " to " << limit;
  EXPECT_EQ(y, expected_y) << old_x << ' ' << old_y << " to " << limit;
}

TEST(TrimVector, ScalesVectorsThatReachTheLimit) {
  expect_trimmed(3.0F, 4.0F, 2.0F, 1.2F, 1.6F);
  expect_trimmed(1.0F, 1.0F, 2.0F, 1.0F, 1.0F);
  expect_trimmed(0.0F, -2.0F, 2.0F, 0.0F, -2.0F);
  expect_trimmed(3.0F, 4.0F, 0.0F, 0.0F, 0.0F);
  // Both within 0.000001: magnitude 0, below the limit.
  expect_trimmed(0.000001F, -0.000001F, 1e-9F, 0.000001F, -0.000001F);
  // The square overflows, so the magnitude is infinite.
  expect_trimmed(1e30F, 1.0F, 2.0F, 0.0F, 0.0F);
  expect_trimmed(30.0F, 40.0F, nan, 30.0F, 40.0F);
}

TEST(TrimVector, MayGiveOrKeepNotANumber) {
  float x[] = {0.0F, nan};
  float y[] = {0.0F, 50.0F};
  TRIM_VECTOR(x, y, 2, 0.0F);
  EXPECT_TRUE(std::isnan(x[0]) && std::isnan(y[0]));
  EXPECT_TRUE(std::isnan(x[1]));
  EXPECT_EQ(y[1], 50.0F);
}

TEST(TrimVector, AgreesWithTheNaiveLoop) {
  std::mt19937 random(99);
  std::uniform_real_distribution<float> component(-3.0F, 3.0F);
  std::vector<float> x(20003), y(20003), expected_x, expected_y;
  for (std::size_t i = 0; i < x.size(); ++i) {
    x[i] = component(random);
    y[i] = component(random);
    const float magnitude = std::sqrt(x[i] * x[i] + y[i] * y[i]);
    const bool is_kept = magnitude < 1.7F || i == x.size() - 1;
    expected_x.push_back(is_kept ? x[i] : x[i] * 1.7F / magnitude);
    expected_y.push_back(is_kept ? y[i] : y[i] * 1.7F / magnitude);
  }
  TRIM_VECTOR(x.data(), y.data(), std::ssize(x) - 1, 1.7F);
  EXPECT_EQ(x, expected_x);
  EXPECT_EQ(y, expected_y);
}

}  // namespace
}  // namespace quillet
