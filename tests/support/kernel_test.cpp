// Every form of every kernel gives the same bits. That they are the right ones is the matter of the
// kernels' own tests, which run the form for the processor at hand.
#include "support/kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "mesh/mesh_test_files.h"
#include "operations/difference_kernel.h"
#include "operations/duration_kernel.h"
#include "operations/extreme_kernel.h"
#include "operations/flow_direction.h"
#include "operations/trim_kernel.h"
#include "support/interleave.h"
#include "support/vector_magnitude.h"
#include "xf/xf_range.h"

namespace quillet {
namespace {

// Ordinary values, and those at which kernels differ when they do.
class Values {
 public:
  float one() {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float odd[] = {0,      -0.0F,  infinity, -infinity, nan,     -nan,
                             1e-6F,  -1e-6F, 1.1e-6F,  1e-40F,    -3e-42F, 2e20F,
                             -2e20F, 1,      -1,       3,         4,       3.4e38F};
    if (engine() % 3 == 0) return odd[engine() % std::size(odd)];
    return std::uniform_real_distribution<float>(-5, 5)(engine);
  }
  LargeArray<float> array(std::int64_t count) {
    LargeArray<float> values(static_cast<std::size_t>(count));
    std::generate(values.begin(), values.end(), [&] { return one(); });
    return values;
  }
  RES_TYPE record(std::int32_t count, bool is_vector) {
    RES_TYPE record;
    SIZE_RECORD(record, count, 2 * count + 1, is_vector);
    for (auto* const values : {&record.nd.x, &record.nd.y}) {
      std::generate(values->begin(), values->end(), [&] { return one(); });
    }
    for (auto& status : record.cell.status) status = static_cast<std::int8_t>(engine() % 256);
    return record;
  }

 private:
  std::mt19937 engine{20261121};
};

// What the kernels have computed.
class Results {
 public:
  template <typename Array>
  void add(const Array& values) {
    for (auto value : values) {
      // Which of two NaNs a sum becomes is the compiler's choice.
      if (value != value) value = std::numeric_limits<decltype(value)>::quiet_NaN();
      bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }
  }
  void add(const RES_TYPE& record) {
    add(record.nd.x);
    add(record.nd.y);
    add(record.nd.source);
    add(record.cell.status);
  }
  friend bool operator==(const Results&, const Results&) = default;

 private:
  std::string bytes;
};

void fold_extremes(std::int32_t count, Values& values, Results& results) {
  for (const Extreme extreme : {Extreme::maximum, Extreme::minimum}) {
    for (const bool is_vector : {false, true}) {
      FileExtreme file;
      const std::int32_t components = is_vector ? 2 : 1;
      RES_TYPE overall = values.record(count, false);
      overall.nd.x = values.array(components * count);
      overall.is_vector = is_vector;
      SIZE_SOURCES(overall);
      SIZE_FILE_EXTREME(file, count, overall.cell_count, is_vector);
      RESET_FILE_EXTREME(extreme, file);
      for (int step = 0; step < 4; ++step) {
        const auto time = static_cast<float>(step) / 7;
        FOLD_VALUES(extreme, time, 0, values.array(components * count), file);
        FOLD_STATUSES(extreme, values.record(count, false).cell.status, file.record.cell.status);
      }
      FOLD_FILE(extreme, file, 3, nullptr, overall);
      std::vector<std::uint8_t> counts(static_cast<std::size_t>(count), 1);
      for (std::size_t i = 0; i < counts.size(); i += 3) counts[i] = 0;
      if (!is_vector) FOLD_FILE(extreme, file, 4, &counts, overall);
      FOLD_FILE(extreme, file, 1, nullptr, overall);
      results.add(file.record);
      results.add(file.time);
      results.add(file.magnitude);
      results.add(overall);
    }
  }
}

void difference(std::int32_t count, Values& values, Results& results) {
  test::console_of_returning([&] {
    for (const bool is_vector : {false, true}) {
      RES_TYPE a = values.record(count, is_vector);
      RES_TYPE b = values.record(count, is_vector);
      RES_TYPE result = values.record(count, false);
      const auto level1 = values.array(count), level2 = values.array(count);
      const auto bed1 = values.array(count), bed2 = values.array(count);
      DIFFERENCE(a, b, result);
      results.add(result);
      results.add(a);
      a.is_vector = false;
      const WetDryArrays arrays{level1.data(), level2.data(), bed1.data(), bed2.data()};
      DIFFERENCE_WHERE_WET(
          a, b, [&](auto, auto) { return arrays; }, result);
      results.add(result);
    }
  });
}

void durations(std::int32_t count, Values& values, Results& results) {
  const auto initial = values.array(count), from = values.array(count), to = values.array(count);
  LargeArray<double> hours(static_cast<std::size_t>(count), 0.125), first(hours.size(), -1.0);
  LargeArray<float> rounded(hours.size());
  ADD_DURATION_ABOVE(count, from.data(), to.data(), 0.25, 1.75, 0.5F, hours.data());
  NOTE_FIRST_INCREASE(count, initial.data(), from.data(), to.data(), 0.25, 1.75, 0.5F, -1.0,
                      first.data());
  ROUND_TO_REALS(count, hours.data(), rounded.data());
  results.add(hours);
  results.add(first);
  results.add(rounded);
}

void single_arrays(std::int32_t count, Values& values, Results& results) {
  auto x = values.array(count), y = values.array(count), pairs = values.array(2 * count);
  auto result = x;
  FLOW_DIRECTION(x.data(), y.data(), result.data(), count);
  results.add(result);
  VECTOR_MAGNITUDES(x.data(), y.data(), count, result.data());
  results.add(result);
  PAIR_MAGNITUDES(pairs.data(), count, result.data());
  results.add(result);
  TRIM_SCALAR(x.data(), count, 1.5F);
  TRIM_VECTOR(pairs.data(), count, 1.5F);
  results.add(x);
  results.add(pairs);
  JOIN_COMPONENTS(x.data(), y.data(), count, pairs.data());
  results.add(pairs);
  SEPARATE_COMPONENTS(pairs.data(), count, y.data(), x.data());
  results.add(x);
  results.add(y);
  const XfRange range = XF_RANGE_OF(pairs.data(), pairs.size());
  results.add(std::vector{range.smallest, range.largest});
}

using KernelUse = void (*)(std::int32_t count, Values& values, Results& results);
class KernelForms : public ::testing::TestWithParam<KernelUse> {};

TEST_P(KernelForms, GiveTheSameBits) {
  const KernelForm best = CHOSEN_KERNEL_FORM();
  EXPECT_EQ(best, KERNEL_FORMS().back());
  for (const std::int32_t count : {0, 1, 2, 7, 15, 16, 17, 31, 33, 63, 64, 65, 127, 130, 1003}) {
    const auto results_of = [&](KernelForm form) {
      CHOOSE_KERNEL_FORM(form);
      Values values;
      Results results;
      GetParam()(count, values, results);
      return results;
    };
    const Results expected = results_of(KernelForm::portable);
    for (const KernelForm form : KERNEL_FORMS()) {
      EXPECT_TRUE(results_of(form) == expected)
          << "form " << static_cast<int>(form) << ", " << count << " nodes";
    }
  }
  CHOOSE_KERNEL_FORM(best);
}

std::string name_of_use(const ::testing::TestParamInfo<KernelUse>& use) {
  constexpr const char* names[] = {"Extremes", "Difference", "Durations", "SingleArrays"};
  return names[use.index];
}

INSTANTIATE_TEST_SUITE_P(All, KernelForms,
                         ::testing::Values(fold_extremes, difference, durations, single_arrays),
                         name_of_use);

}  // namespace
}  // namespace quillet
