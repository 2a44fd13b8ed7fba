// The kernels of -max and -min against loops that do one node at a time, bit by bit.
#include "operations/extreme_kernel.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "results/result_types.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

float naive_magnitude(float x, float y) {
  if (std::abs(x) <= 0.000001F && std::abs(y) <= 0.000001F) return 0;
  return std::sqrt(x * x + y * y);
}

bool naive_wins(Extreme extreme, float candidate, float running) {
  return extreme == Extreme::maximum ? candidate > running : candidate < running;
}

// Absolute values and their comparison in signed bytes: -128 has no positive counterpart there.
std::int8_t naive_status(Extreme extreme, std::int8_t running, std::int8_t status) {
  const auto absolute = [](int value) { return value == -128 ? -128 : std::abs(value); };
  const int a = absolute(running);
  const int b = absolute(status);
  return static_cast<std::int8_t>(extreme == Extreme::maximum ? std::max(a, b) : std::min(a, b));
}

class Randomly {
 public:
  explicit Randomly(unsigned seed) : engine(seed) {}

  // Ties are as likely as values that are no ordinary numbers.
  float value() {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float odd[] = {0,     -0.0F,  infinity, -infinity, NAN, 1e-6F, -1e-6F,
                             2e20F, -2e20F, 1e-40F,   1,         -1,  3,     4};
    if (engine() % 2 == 0) return odd[engine() % std::size(odd)];
    return std::uniform_real_distribution<float>(-5, 5)(engine);
  }
  std::int8_t status() { return static_cast<std::int8_t>(engine() % 256); }
  std::uint8_t flag() { return static_cast<std::uint8_t>(engine() % 2); }

  void fill(RES_TYPE& record) {
    for (float& value_of_node : record.nd.x) value_of_node = value();
    for (std::int8_t& status_of_cell : record.cell.status) status_of_cell = status();
  }

 private:
  std::mt19937 engine;
};

std::vector<std::uint32_t> bits(const auto& values) {
  std::vector<std::uint32_t> result;
  for (const float value : values) result.push_back(std::bit_cast<std::uint32_t>(value));
  return result;
}

void expect_same(const RES_TYPE& record, const RES_TYPE& expected) {
  EXPECT_EQ(bits(record.nd.x), bits(expected.nd.x));
  EXPECT_EQ(record.nd.source, expected.nd.source);
  EXPECT_EQ(record.cell.status, expected.cell.status);
}

struct Folding {
  Extreme extreme;
  bool is_vector;
  std::int32_t nodes;
  std::int32_t cells;
};
class Kernels : public ::testing::TestWithParam<Folding> {
 protected:
  float compared(const RES_TYPE& record, std::size_t node) const {
    if (!GetParam().is_vector) return record.nd.x[node];
    return naive_magnitude(record.nd.x[2 * node], record.nd.x[2 * node + 1]);
  }

  // True for the nodes that change.
  std::vector<bool> fold_naively(const RES_TYPE& from, const std::vector<std::uint8_t>* counts,
                                 RES_TYPE& to) const {
    std::vector<bool> won(static_cast<std::size_t>(from.node_count));
    for (std::size_t node = 0; node < won.size(); ++node) {
      won[node] = (counts == nullptr || (*counts)[node] == 1) &&
                  naive_wins(GetParam().extreme, compared(from, node), compared(to, node));
      if (!won[node]) continue;
      const std::size_t components = GetParam().is_vector ? 2 : 1;
      std::copy_n(&from.nd.x[components * node], components, &to.nd.x[components * node]);
    }
    for (std::size_t cell = 0; cell < to.cell.status.size(); ++cell) {
      to.cell.status[cell] =
          naive_status(GetParam().extreme, to.cell.status[cell], from.cell.status[cell]);
    }
    return won;
  }
};

void fold_in_two_pieces(Extreme extreme, const RES_TYPE& step, FileExtreme& file) {
  const std::int64_t first_of_second = step.node_count / 3;
  const auto values = std::span<const float>(step.nd.x);
  const std::size_t size = (step.is_vector ? 2 : 1) * first_of_second;
  FOLD_VALUES(extreme, step.time, first_of_second, values.subspan(size), file);
  FOLD_VALUES(extreme, step.time, 0, values.first(size), file);
  FOLD_STATUSES(extreme, step.cell.status, file.record.cell.status);
}

TEST_P(Kernels, FoldOutputTimesAndFilesAsASlowLoopDoes) {
  const auto [extreme, is_vector, nodes, cells] = GetParam();
  Randomly random(7);
  RES_TYPE step;
  RES_TYPE overall;
  FileExtreme file;
  SIZE_RECORD_OF_PAIRS(step, nodes, cells, is_vector);
  SIZE_RECORD_OF_PAIRS(overall, nodes, cells, is_vector);
  RESET_RECORD(overall, INITIAL_STATUS(extreme));
  SIZE_SOURCES(overall);
  SIZE_FILE_EXTREME(file, nodes, cells, is_vector);
  RES_TYPE expected_overall = overall;

  for (const std::int32_t file_number : {1, 2, 3}) {
    RESET_FILE_EXTREME(extreme, file);
    RES_TYPE expected = file.record;
    std::vector<float> expected_times(static_cast<std::size_t>(nodes), 0.0F);
    for (step.time = 0.5F; step.time < 6; step.time += 1) {
      random.fill(step);
      fold_in_two_pieces(extreme, step, file);
      const auto won = fold_naively(step, nullptr, expected);
      for (std::size_t node = 0; node < won.size(); ++node) {
        if (won[node]) expected_times[node] = step.time;
      }
    }
    expect_same(file.record, expected);
    EXPECT_EQ(bits(file.time), bits(expected_times));

    std::vector<std::uint8_t> counts(static_cast<std::size_t>(nodes));
    for (std::uint8_t& count : counts) count = random.flag();
    const bool restricted = !is_vector && file_number == 2;
    FOLD_FILE(extreme, file, file_number, restricted ? &counts : nullptr, overall);
    const auto won = fold_naively(expected, restricted ? &counts : nullptr, expected_overall);
    for (std::size_t node = 0; node < won.size(); ++node) {
      if (won[node]) expected_overall.nd.source[node] = file_number;
    }
    expect_same(overall, expected_overall);
  }
}

std::vector<Folding> foldings() {
  std::vector<Folding> all;
  for (const Extreme extreme : {Extreme::maximum, Extreme::minimum}) {
    for (const bool is_vector : {false, true}) {
      for (const std::int32_t nodes : {0, 1, 7, 31, 64, 1003}) {
        all.push_back({extreme, is_vector, nodes, 2 * nodes + 1});
      }
    }
  }
  return all;
}

INSTANTIATE_TEST_SUITE_P(All, Kernels, ::testing::ValuesIn(foldings()));

}  // namespace
}  // namespace quillet
