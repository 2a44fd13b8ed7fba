// The kernels of -trim and magnitudes against a loop that does one node at a time with branches,
// bit by bit.
#include "operations/trim_kernel.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "support/vector_magnitude.h"

namespace quillet {
namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float tiny = std::numeric_limits<float>::denorm_min();
constexpr float huge = std::numeric_limits<float>::max();
constexpr float least_root = 1.3e19F;  // the squares of two of these still have a sum
constexpr float odd_values[] = {
    0,       -0.0F,      inf,         -inf, nan,   tiny, -tiny, 1e-40F, 1e-6F, -1e-6F,
    1.1e-6F, least_root, -least_root, huge, -huge, 1,    2,     -2,     3,     4};

std::vector<float> random_values(unsigned seed, int count) {
  std::mt19937 random(seed);
  std::vector<float> values;
  for (int i = 0; i < count; ++i) {
    const auto bits = static_cast<std::uint32_t>(random());
    const float some[] = {odd_values[random() % std::size(odd_values)], std::bit_cast<float>(bits),
                          std::uniform_real_distribution<float>(-5, 5)(random)};
    values.push_back(some[random() % 3]);
  }
  return values;
}

// Equal bits; which not-a-number it is does not matter.
void expect_same(const std::vector<float>& got, const std::vector<float>& expected) {
  ASSERT_EQ(got.size(), expected.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    if (std::isnan(expected[i])) {
      EXPECT_TRUE(std::isnan(got[i])) << i << ": " << got[i];
    } else {
      EXPECT_EQ(std::bit_cast<std::uint32_t>(got[i]), std::bit_cast<std::uint32_t>(expected[i]))
          << i << ": " << got[i] << " is not " << expected[i];
    }
  }
}

class TrimKernels : public ::testing::TestWithParam<float> {};

// 10007: some nodes are computed side by side, the last few one by one.
TEST_P(TrimKernels, AgreeWithTheNaiveLoops) {
  const float limit = GetParam();
  constexpr int nodes = 10007;
  std::vector<float> pairs = random_values(1, 2 * nodes), values = random_values(2, nodes);
  std::vector<float> trimmed_pairs = pairs, trimmed = values;
  std::vector<float> lengths(nodes), naive_lengths(nodes);
  for (int i = 0; i < nodes; ++i) {
    if (!(values[i] < limit)) trimmed[i] = limit;
    const float x = pairs[2 * i], y = pairs[2 * i + 1];
    const bool is_negligible = std::fabs(x) <= 0.000001F && std::fabs(y) <= 0.000001F;
    if (!is_negligible) naive_lengths[i] = std::sqrt(x * x + y * y);
    if (!(naive_lengths[i] >= limit)) continue;
    trimmed_pairs[2 * i] = x * limit / naive_lengths[i];
    trimmed_pairs[2 * i + 1] = y * limit / naive_lengths[i];
  }
  PAIR_MAGNITUDES(pairs.data(), nodes, lengths.data());
  TRIM_SCALAR(values.data(), nodes, limit);
  TRIM_VECTOR(pairs.data(), nodes, limit);
  expect_same(lengths, naive_lengths);
  expect_same(values, trimmed);
  expect_same(pairs, trimmed_pairs);
}

INSTANTIATE_TEST_SUITE_P(Limits, TrimKernels,
                         ::testing::Values(2.0F, 0.0F, -1.0F, tiny, 1e-6F, least_root, huge, inf,
                                           -inf));

TEST(TrimKernels, KeepDirectionsAndLeaveShorterVectorsBitByBit) {
  struct Row {
    float x, y, limit, trimmed_x, trimmed_y;
  };
  // The square of 3e19 is infinite, so is the magnitude; by an infinite one nothing is left.
  for (const Row& row :
       {Row{3, 4, 2, 1.2F, 1.6F}, Row{1, 1, 2, 1, 1}, Row{0, -2, 2, 0, -2},
        Row{-0.0F, 8, 2, -0.0F, 2}, Row{tiny, -0.0F, 2, tiny, -0.0F}, Row{nan, 9, 2, nan, 9},
        Row{3e19F, 0, 2, 0, 0}, Row{inf, 1, 2, nan, 0}, Row{huge, huge, inf, nan, nan},
        Row{1e19F, 0, inf, 1e19F, 0}, Row{1e-6F, 0, 0, nan, nan}, Row{3, 4, 0, 0, 0}}) {
    std::vector<float> pairs, trimmed;
    for (int node = 0; node < 19; ++node) {
      pairs.insert(pairs.end(), {row.x, row.y});
      trimmed.insert(trimmed.end(), {row.trimmed_x, row.trimmed_y});
    }
    TRIM_VECTOR(pairs.data(), 19, row.limit);
    expect_same(pairs, trimmed);
  }
}

}  // namespace
}  // namespace quillet
