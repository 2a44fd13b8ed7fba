#include "operations/flow_direction.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

namespace quillet {
namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float tiny = std::numeric_limits<float>::denorm_min();
constexpr float huge = std::numeric_limits<float>::max();

// Within the units in the last place and of the same sign; not a number only where expected.
bool is_close(float got, float expected, int units) {
  if (std::isnan(expected)) return std::isnan(got);
  return std::abs(std::int64_t{std::bit_cast<std::int32_t>(got)} -
                  std::int64_t{std::bit_cast<std::int32_t>(expected)}) <= units;
}

bool is_arc_tangent(float got, float x, float y) {
  const double angle = std::atan2(static_cast<double>(x), static_cast<double>(y));
  return is_close(got, static_cast<float>(angle * 57.29577951308232), 1);
}

TEST(FlowDirection, AxesDiagonalsZerosAndInfinitiesAreExact) {
  struct Row {
    float x, y, degrees;
  };
  const std::vector<Row> table = {
      {0, 1, 0},         {1, 0, 90},           {-1, 0, -90},        {0, -1, 180},
      {-0.0F, -1, -180}, {-0.0F, 1, -0.0F},    {2, -0.0F, 90},      {-2, -0.0F, -90},
      {0, 0, 0},         {-0.0F, 0, -0.0F},    {0, -0.0F, 180},     {-0.0F, -0.0F, -180},
      {0.3F, 0.3F, 45},  {0.3F, -0.3F, 135},   {-0.3F, 0.3F, -45},  {-0.3F, -0.3F, -135},
      {tiny, tiny, 45},  {-tiny, huge, -0.0F}, {huge, -huge, 135},  {-huge, tiny, -90},
      {inf, inf, 45},    {-inf, inf, -45},     {inf, -inf, 135},    {-inf, -inf, -135},
      {inf, huge, 90},   {huge, inf, 0},       {-huge, -inf, -180}, {-inf, 0, -90},
      {nan, 1, nan},     {1, nan, nan},        {nan, inf, nan},     {-inf, nan, nan},
      {nan, nan, nan},   {0, nan, nan},        {-0.0F, inf, -0.0F}, {0, -inf, 180}};
  for (const Row& row : table) {
    // 19: some nodes are computed side by side, the last few one by one.
    const std::vector<float> x(19, row.x);
    const std::vector<float> y(19, row.y);
    std::vector<float> degrees(19, 7.0F);
    FLOW_DIRECTION(x.data(), y.data(), degrees.data(), std::ssize(x));
    // The result may replace either component.
    std::vector<float> in_x = x, in_y = y;
    FLOW_DIRECTION(in_x.data(), y.data(), in_x.data(), std::ssize(x));
    FLOW_DIRECTION(x.data(), in_y.data(), in_y.data(), std::ssize(x));
    for (const auto* const result : {&degrees, &in_x, &in_y}) {
      for (const float got : *result) {
        EXPECT_TRUE(is_close(got, row.degrees, 0)) << row.x << ' ' << row.y << ": " << got;
      }
    }
  }
}

TEST(FlowDirection, IsTheArcTangentToTheLastPlace) {
  std::mt19937 random(4711);
  std::uniform_real_distribution<float> velocity(-4.0F, 4.0F);
  std::vector<float> x, y;
  for (int i = 0; i < 200000; ++i) {
    const float v = velocity(random);
    x.insert(x.end(), {v, std::bit_cast<float>(static_cast<std::uint32_t>(random())), v});
    // The last is beside 67.5 degrees, where the way of computing changes.
    y.insert(y.end(), {velocity(random), std::bit_cast<float>(static_cast<std::uint32_t>(random())),
                       v * 0.41421356F});
  }
  std::vector<float> degrees(x.size());
  FLOW_DIRECTION(x.data(), y.data(), degrees.data(), std::ssize(x));
  for (std::size_t i = 0; i < x.size(); ++i) {
    ASSERT_TRUE(is_arc_tangent(degrees[i], x[i], y[i])) << x[i] << ' ' << y[i];
  }
  FLOW_DIRECTION(x.data(), y.data(), x.data(), std::ssize(x));
  for (std::size_t i = 0; i < x.size(); ++i) ASSERT_TRUE(is_close(x[i], degrees[i], 0)) << i;
}

}  // namespace
}  // namespace quillet
