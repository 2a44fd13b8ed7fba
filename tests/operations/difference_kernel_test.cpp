#include "operations/difference_kernel.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "case_names.h"
#include "mesh/mesh_test_files.h"
#include "results/time_pairing.h"

namespace quillet {
namespace {

using test::console_of;
using test::console_of_returning;

constexpr std::int32_t node_count = 70003;
constexpr std::int32_t cell_count = 9001;

struct RandomRuns {
  RES_TYPE first, second, result;
  std::vector<float> level1, level2, bed1, bed2;

  explicit RandomRuns(bool is_vector) {
    std::mt19937 random(2718);
    // Few levels and beds, so that levels exactly at the limit are frequent.
    const auto pick = [&](int count) { return static_cast<int>(random() % count); };
    const auto value = [&] { return static_cast<float>(pick(2001)) * 0.01F - 10; };
    for (RES_TYPE* const record : {&first, &second, &result}) {
      SIZE_RECORD(*record, node_count, cell_count, is_vector, 7);
      for (float& x : record->nd.x) x = pick(4) == 0 ? -1e-6F : value();
      for (float& y : record->nd.y) y = pick(2) == 0 ? 1e-6F : value();
      for (auto& status : record->cell.status) status = static_cast<std::int8_t>(pick(4) - 1);
      record->time = 2.5F;
    }
    for (auto* const levels : {&level1, &level2, &bed1, &bed2}) {
      for (int i = 0; i < node_count; ++i) {
        levels->push_back(static_cast<float>(pick(4)) + 0.0005F * static_cast<float>(pick(5)));
      }
    }
  }
};

float naive_value(const RES_TYPE& record, int i) {
  const float x = record.nd.x[i];
  if (!record.is_vector) return x;
  const float y = record.nd.y[i];
  return std::fabs(x) <= 0.000001F && std::fabs(y) <= 0.000001F ? 0 : std::sqrt(x * x + y * y);
}

class DifferenceKernel : public ::testing::TestWithParam<bool> {};

TEST_P(DifferenceKernel, AgreesWithTheNaiveLoop) {
  const RandomRuns before(GetParam());
  RandomRuns dry = before;
  RandomRuns wet = before;
  console_of_returning([&] {
    DIFFERENCE(dry.first, dry.second, dry.result);
    const auto pieces = [&](auto i, auto) {
      return WetDryArrays{&wet.level1[i], &wet.level2[i], &wet.bed1[i], &wet.bed2[i]};
    };
    DIFFERENCE_WHERE_WET(wet.first, wet.second, pieces, wet.result);
  });
  for (int i = 0; i < node_count; ++i) {
    const float v1 = naive_value(before.first, i);
    const float v2 = naive_value(before.second, i);
    const bool wet1 = before.bed1[i] + 0.001F < before.level1[i];
    const bool wet2 = before.bed2[i] + 0.001F < before.level2[i];
    ASSERT_EQ(dry.result.nd.x[i], v1 - v2);
    ASSERT_EQ(wet.result.nd.x[i], wet1 ? (wet2 ? v1 - v2 : 99) : (wet2 ? -99 : 0));
    ASSERT_EQ(dry.first.nd.x[i], v1);  // vectors leave their magnitudes
    ASSERT_EQ(wet.second.nd.x[i], v2);
  }
  for (int i = 0; i < cell_count; ++i) {
    const bool active1 = before.first.cell.status[i] == 1;
    const bool active2 = before.second.cell.status[i] == 1;
    ASSERT_EQ(dry.result.cell.status[i], active1 && active2 ? 1 : 0);
    ASSERT_EQ(wet.result.cell.status[i], active1 || active2 ? 1 : 0);
  }
  EXPECT_EQ(dry.result.time, 2.5F);
  EXPECT_FALSE(dry.result.is_vector || wet.result.is_vector);
}

INSTANTIATE_TEST_SUITE_P(ScalarsAndVectors, DifferenceKernel, ::testing::Bool(),
                         (testing::NameOfCondition{"Vectors", "Scalars"}));

}  // namespace
}  // namespace quillet
