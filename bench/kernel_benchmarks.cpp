// Times the loops over nodes by themselves, in the processor's second cache (8192 nodes) and out of
// it (1 million), and the forms of numbers. Items are nodes, cells or numbers.
//
//     kernel_benchmarks [--benchmark_filter=REGEX]

#include <benchmark/benchmark.h>
#include <fmt/compile.h>
#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "ensight/fixed_forms.h"
#include "operations/extreme_kernel.h"
#include "operations/flow_direction.h"
#include "operations/trim_kernel.h"
#include "support/interleave.h"
#include "support/numbers.h"

namespace {

using quillet::Extreme;
using State = benchmark::State;

constexpr std::int64_t in_cache = 8192;
constexpr std::int64_t out_of_cache = 1'000'000;

// Depths and velocities: most of a flood map lies between 0 and a few units.
quillet::LargeArray<float> make_values(std::int64_t count, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  quillet::LargeArray<float> values(static_cast<std::size_t>(count));
  for (float& value : values) value = static_cast<float>(random() >> 40) * 0x1p-22F - 1.0F;
  return values;
}

quillet::LargeArray<std::int8_t> make_statuses(std::int64_t count, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  quillet::LargeArray<std::int8_t> statuses(static_cast<std::size_t>(count));
  for (std::int8_t& status : statuses) status = static_cast<std::int8_t>(random() % 2);
  return statuses;
}

quillet::RES_TYPE make_step(std::int64_t count, bool is_vector, float time) {
  quillet::RES_TYPE step;
  const auto nodes = static_cast<std::int32_t>(count);
  quillet::SIZE_RECORD_OF_PAIRS(step, nodes, nodes, is_vector);
  const auto seed = static_cast<std::uint64_t>(time * 10);
  step.nd.x = make_values(is_vector ? 2 * count : count, seed);
  step.cell.status = make_statuses(count, seed + 2);
  step.time = time;
  return step;
}

void fold(const quillet::RES_TYPE& step, quillet::FileExtreme& file) {
  quillet::FOLD_VALUES(Extreme::maximum, step.time, 0, step.nd.x, file);
  quillet::FOLD_STATUSES(Extreme::maximum, step.cell.status, file.record.cell.status);
}

quillet::FileExtreme make_file(std::int64_t count, bool is_vector) {
  quillet::FileExtreme file;
  const auto nodes = static_cast<std::int32_t>(count);
  quillet::SIZE_FILE_EXTREME(file, nodes, nodes, is_vector);
  return file;
}

void count_items(State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Several output times in turn, so that nodes are won and lost as in a flood.
void fold_output_times(State& state, bool is_vector) {
  quillet::FileExtreme file = make_file(state.range(0), is_vector);
  std::vector<quillet::RES_TYPE> steps;
  for (int hour = 0; hour < 4; ++hour) {
    steps.push_back(make_step(state.range(0), is_vector, static_cast<float>(hour)));
  }
  std::size_t next = 0;
  for ([[maybe_unused]] auto _ : state) {
    fold(steps[next], file);
    next = (next + 1) % steps.size();
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void FOLD_SCALARS(State& state) {
  fold_output_times(state, false);
}
void FOLD_VECTORS(State& state) {
  fold_output_times(state, true);
}

void FOLD_STATUSES(State& state) {
  const auto step = make_statuses(state.range(0), 1);
  auto running = make_statuses(state.range(0), 2);
  for ([[maybe_unused]] auto _ : state) {
    quillet::FOLD_STATUSES(Extreme::maximum, step, running);
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void fold_files(State& state, bool is_vector, bool only_some_nodes) {
  quillet::FileExtreme file = make_file(state.range(0), is_vector);
  fold(make_step(state.range(0), is_vector, 1), file);
  quillet::RES_TYPE overall = make_step(state.range(0), is_vector, 2);
  quillet::SIZE_SOURCES(overall);
  const std::vector<std::uint8_t> counts(static_cast<std::size_t>(state.range(0)), 1);
  for ([[maybe_unused]] auto _ : state) {
    quillet::FOLD_FILE(Extreme::maximum, file, 2, only_some_nodes ? &counts : nullptr, overall);
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void FOLD_FILE_SCALAR(State& state) {
  fold_files(state, false, false);
}
void FOLD_FILE_COUNTED(State& state) {
  fold_files(state, false, true);
}
void FOLD_FILE_VECTOR(State& state) {
  fold_files(state, true, false);
}

void SEPARATE_COMPONENTS(State& state) {
  const auto pairs = make_values(2 * state.range(0), 1);
  auto x = make_values(state.range(0), 2);
  auto y = x;
  for ([[maybe_unused]] auto _ : state) {
    quillet::SEPARATE_COMPONENTS(pairs.data(), state.range(0), x.data(), y.data());
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void JOIN_COMPONENTS(State& state) {
  const auto x = make_values(state.range(0), 1);
  const auto y = make_values(state.range(0), 2);
  auto pairs = make_values(2 * state.range(0), 3);
  for ([[maybe_unused]] auto _ : state) {
    quillet::JOIN_COMPONENTS(x.data(), y.data(), state.range(0), pairs.data());
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void FLOW_DIRECTION(State& state) {
  const auto x = make_values(state.range(0), 1);
  const auto y = make_values(state.range(0), 2);
  auto degrees = x;
  for ([[maybe_unused]] auto _ : state) {
    quillet::FLOW_DIRECTION(x.data(), y.data(), degrees.data(), state.range(0));
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void FLOW_DIRECTION_BY_ATAN2(State& state) {
  const auto x = make_values(state.range(0), 1);
  const auto y = make_values(state.range(0), 2);
  auto degrees = x;
  for ([[maybe_unused]] auto _ : state) {
    for (std::size_t i = 0; i < x.size(); ++i) {
      degrees[i] = static_cast<float>(std::atan2(double{x[i]}, double{y[i]}) * 57.29577951308232);
    }
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void TRIM_SCALAR(State& state) {
  auto values = make_values(state.range(0), 1);
  for ([[maybe_unused]] auto _ : state) {
    quillet::TRIM_SCALAR(values.data(), state.range(0), 2);
    benchmark::ClobberMemory();
  }
  count_items(state);
}

void TRIM_VECTOR(State& state) {
  auto pairs = make_values(2 * state.range(0), 1);
  for ([[maybe_unused]] auto _ : state) {
    quillet::TRIM_VECTOR(pairs.data(), state.range(0), 2);
    benchmark::ClobberMemory();
  }
  count_items(state);
}

// ---- Numbers as texts ----

constexpr std::int64_t number_count = 100'000;

void E12_5_LINES(State& state) {
  const auto values = make_values(number_count, 1);
  std::vector<char> lines(values.size() * quillet::e12_5_line_width);
  for ([[maybe_unused]] auto _ : state) {
    quillet::WRITE_E12_5_LINES(values.data(), number_count, lines.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * number_count);
}

// The other ways to five digits; both give "1.2345e+03", still without the form's own layout.
void E12_5_BY_FMT(State& state) {
  const auto values = make_values(number_count, 1);
  std::vector<char> lines(values.size() * 16);
  for ([[maybe_unused]] auto _ : state) {
    char* end = lines.data();
    for (const float value : values) end = fmt::format_to(end, FMT_COMPILE("{: .4e}\n"), value);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * number_count);
}

void E12_5_BY_TO_CHARS(State& state) {
  const auto values = make_values(number_count, 1);
  std::vector<char> lines(values.size() * 16);
  for ([[maybe_unused]] auto _ : state) {
    char* end = lines.data();
    for (const float value : values) {
      end = std::to_chars(end, end + 15, value, std::chars_format::scientific, 4).ptr;
      *end++ = '\n';
    }
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * number_count);
}

template <typename Format>
void format_times(State& state, Format format) {
  const auto times = make_values(1000, 1);
  for ([[maybe_unused]] auto _ : state) {
    for (const float time : times) benchmark::DoNotOptimize(format(time));
  }
  state.SetItemsProcessed(state.iterations() * 1000);
}

void AREAL(State& state) {
  format_times(state, [](float time) { return quillet::AREAL(time); });
}
void AREALD(State& state) {
  format_times(state, [](float time) { return quillet::AREALD(time, 3); });
}

void both_sizes(benchmark::internal::Benchmark* kernel) {
  kernel->Arg(in_cache)->Arg(out_of_cache);
}

BENCHMARK(FOLD_SCALARS)->Apply(both_sizes);
BENCHMARK(FOLD_VECTORS)->Apply(both_sizes);
BENCHMARK(FOLD_STATUSES)->Apply(both_sizes);
BENCHMARK(FOLD_FILE_SCALAR)->Apply(both_sizes);
BENCHMARK(FOLD_FILE_COUNTED)->Apply(both_sizes);
BENCHMARK(FOLD_FILE_VECTOR)->Apply(both_sizes);
BENCHMARK(SEPARATE_COMPONENTS)->Apply(both_sizes);
BENCHMARK(JOIN_COMPONENTS)->Apply(both_sizes);
BENCHMARK(FLOW_DIRECTION)->Apply(both_sizes);
BENCHMARK(FLOW_DIRECTION_BY_ATAN2)->Apply(both_sizes);
BENCHMARK(TRIM_SCALAR)->Apply(both_sizes);
BENCHMARK(TRIM_VECTOR)->Apply(both_sizes);
BENCHMARK(E12_5_LINES);
BENCHMARK(E12_5_BY_FMT);
BENCHMARK(E12_5_BY_TO_CHARS);
BENCHMARK(AREAL);
BENCHMARK(AREALD);

}  // namespace

BENCHMARK_MAIN();
