#include "operations/extreme_kernel.h"

#include <algorithm>
#include <cstring>

#include "support/kernel.h"
#include "support/vector_magnitude.h"

// Nodes are looked at in blocks, and where none of a block wins nothing is stored: in most of a run
// most values change no more, and what is not written need not leave the cache.

namespace quillet {
namespace {

struct Greater {
  template <typename Value>
  KERNEL_LOOP bool operator()(Value candidate, Value running) const {
    return candidate > running;
  }
};

struct Smaller {
  template <typename Value>
  KERNEL_LOOP bool operator()(Value candidate, Value running) const {
    return candidate < running;
  }
};

constexpr std::int64_t block_size = 64;

// Calls work(first, size) for the blocks of all nodes.
template <typename Work>
KERNEL_LOOP void in_blocks(std::int64_t count, const Work& work) {
  std::int64_t first = 0;
  for (; first + block_size <= count; first += block_size) work(first, block_size);
  if (first < count) work(first, count - first);
}

template <typename Wins>
KERNEL_LOOP bool any_wins(std::int64_t count, const float* candidate, const float* running) {
  std::int32_t winners = 0;
#pragma omp simd reduction(| : winners)
  for (std::int64_t i = 0; i < count; ++i) winners |= Wins{}(candidate[i], running[i]) ? 1 : 0;
  return winners != 0;
}

// The mark is what a won node is tagged with: the output time, or the number of the file.
template <typename Wins, typename Mark>
KERNEL_LOOP void keep_winning_block(std::int64_t count, const float* value, Mark mark,
                                    float* running, Mark* marks) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = Wins{}(value[i], running[i]);
    running[i] = SELECT(wins, value[i], running[i]);
    marks[i] = SELECT(wins, mark, marks[i]);
  }
}

template <typename Wins, typename Mark>
KERNEL_LOOP void keep_winning_scalars(std::int64_t count, const float* value, Mark mark,
                                      float* running, Mark* marks) {
  in_blocks(
      count, [&](std::int64_t first, std::int64_t size) __attribute__((always_inline)) {
        if (!any_wins<Wins>(size, value + first, running + first)) return;
        keep_winning_block<Wins>(size, value + first, mark, running + first, marks + first);
      });
}

// A pair as one word, to be moved as a whole.
KERNEL_LOOP std::uint64_t pair_at(const float* pairs, std::int64_t i) {
  std::uint64_t word = 0;
  std::memcpy(&word, pairs + 2 * i, sizeof word);
  return word;
}

template <typename Wins>
KERNEL_LOOP void keep_winning_pairs(std::int64_t count, const float* pairs, const float* length,
                                    const float* running_length, float* running) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const std::uint64_t mask = -static_cast<std::uint64_t>(Wins{}(length[i], running_length[i]));
    const std::uint64_t word = (pair_at(pairs, i) & mask) | (pair_at(running, i) & ~mask);
    std::memcpy(running + 2 * i, &word, sizeof word);
  }
}

KERNEL_LOOP void find_lengths(std::int64_t count, const float* pairs, float* length) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    length[i] = VECTOR_MAGNITUDE(pairs[2 * i], pairs[2 * i + 1]);
  }
}

template <typename Wins>
KERNEL_LOOP void keep_winning_vectors(std::int64_t count, const float* pairs, float time,
                                      float* running, float* magnitude, float* times) {
  in_blocks(
      count, [&](std::int64_t first, std::int64_t size) __attribute__((always_inline)) {
        float length[block_size];
        find_lengths(size, pairs + 2 * first, length);
        if (!any_wins<Wins>(size, length, magnitude + first)) return;
        keep_winning_pairs<Wins>(size, pairs + 2 * first, length, magnitude + first,
                                 running + 2 * first);
        keep_winning_block<Wins>(size, length, time, magnitude + first, times + first);
      });
}

template <typename Wins>
KERNEL_LOOP void keep_winning_file_vectors(std::int64_t count, const float* pairs,
                                           const float* magnitude, std::int32_t file,
                                           float* overall, std::int32_t* source) {
  in_blocks(
      count, [&](std::int64_t first, std::int64_t size) __attribute__((always_inline)) {
        float length[block_size];
        find_lengths(size, overall + 2 * first, length);
        if (!any_wins<Wins>(size, magnitude + first, length)) return;
        keep_winning_pairs<Wins>(size, pairs + 2 * first, magnitude + first, length,
                                 overall + 2 * first);
        keep_winning_block<Wins>(size, magnitude + first, file, length, source + first);
      });
}

template <typename Wins>
KERNEL_LOOP void keep_winning_counted_scalars(std::int64_t count, const float* value,
                                              const std::uint8_t* counts, std::int32_t file,
                                              float* overall, std::int32_t* source) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool counted = counts[i] != 0;
    const bool wins = counted & Wins{}(value[i], overall[i]);
    overall[i] = SELECT(wins, value[i], overall[i]);
    source[i] = SELECT(wins, file, source[i]);
  }
}

// Values of the first file where they stand: those that do not win against 0 become 0.
template <typename Wins>
KERNEL_LOOP void keep_first_scalars(std::int64_t count, float* values, std::int32_t* source) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = Wins{}(values[i], 0.0F);
    values[i] = SELECT(wins, values[i], 0.0F);
    source[i] = wins ? 1 : 0;
  }
}

template <typename Wins>
KERNEL_LOOP void keep_first_vectors(std::int64_t count, const float* magnitude, float* pairs,
                                    std::int32_t* source) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = Wins{}(magnitude[i], 0.0F);
    const std::uint64_t word = pair_at(pairs, i) & -static_cast<std::uint64_t>(wins);
    std::memcpy(pairs + 2 * i, &word, sizeof word);
    source[i] = wins ? 1 : 0;
  }
}

// Signed bytes throughout: -128 stays what it is.
KERNEL_LOOP std::int8_t absolute(std::int8_t status) {
  return static_cast<std::int8_t>(status < 0 ? -status : status);
}

template <typename Wins>
KERNEL_LOOP void keep_winning_statuses(std::int64_t count, const std::int8_t* status,
                                       std::int8_t* running) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const std::int8_t candidate = absolute(status[i]);
    const std::int8_t held = absolute(running[i]);
    running[i] = Wins{}(candidate, held) ? candidate : held;
  }
}

// The kernels of both extremes.
template <typename Wins>
struct Kernels {
  static constexpr auto scalars = Kernel<keep_winning_scalars<Wins, float>>::run;
  static constexpr auto vectors = Kernel<keep_winning_vectors<Wins>>::run;
  static constexpr auto statuses = Kernel<keep_winning_statuses<Wins>>::run;
  static constexpr auto file_scalars = Kernel<keep_winning_scalars<Wins, std::int32_t>>::run;
  static constexpr auto counted_scalars = Kernel<keep_winning_counted_scalars<Wins>>::run;
  static constexpr auto first_scalars = Kernel<keep_first_scalars<Wins>>::run;
  static constexpr auto first_vectors = Kernel<keep_first_vectors<Wins>>::run;
  static constexpr auto file_vectors = Kernel<keep_winning_file_vectors<Wins>>::run;
};

// Calls use(Kernels) with those of the extreme.
template <typename Use>
void with_kernels_of(Extreme extreme, const Use& use) {
  if (extreme == Extreme::maximum) {
    use(Kernels<Greater>{});
  } else {
    use(Kernels<Smaller>{});
  }
}

}  // namespace

std::int8_t INITIAL_STATUS(Extreme extreme) {
  return extreme == Extreme::maximum ? 0 : 1;
}

void SIZE_FILE_EXTREME(FileExtreme& file, std::int32_t node_count, std::int32_t cell_count,
                       bool is_vector) {
  SIZE_RECORD_OF_PAIRS(file.record, node_count, cell_count, is_vector);
  if (is_vector) SIZE_ARRAY(file.magnitude, node_count);
  SIZE_ARRAY(file.time, node_count);
}

void RESET_FILE_EXTREME(Extreme extreme, FileExtreme& file) {
  RESET_RECORD(file.record, INITIAL_STATUS(extreme));
  std::fill(file.magnitude.begin(), file.magnitude.end(), 0.0F);
  std::fill(file.time.begin(), file.time.end(), 0.0F);
}

void FOLD_VALUES(Extreme extreme, float time, std::int64_t first_node,
                 std::span<const float> values, FileExtreme& file) {
  const auto count = std::ssize(values);
  float* const running = file.record.nd.x.data();
  float* const times = file.time.data() + first_node;
  with_kernels_of(extreme, [&](auto kernels) {
    if (file.record.is_vector) {
      kernels.vectors(count / 2, values.data(), time, running + 2 * first_node,
                      file.magnitude.data() + first_node, times);
    } else {
      kernels.scalars(count, values.data(), time, running + first_node, times);
    }
  });
}

void FOLD_STATUSES(Extreme extreme, std::span<const std::int8_t> status,
                   std::span<std::int8_t> running) {
  with_kernels_of(extreme, [&](auto kernels) {
    kernels.statuses(std::ssize(running), status.data(), running.data());
  });
}

void ADOPT_STORED_EXTREME(float time, FileExtreme& file) {
  const RES_TYPE& record = file.record;
  if (record.is_vector) {
    PAIR_MAGNITUDES(record.nd.x.data(), record.node_count, file.magnitude.data());
  }
  std::fill(file.time.begin(), file.time.end(), time);
}

void FOLD_FILE(Extreme extreme, FileExtreme& file, std::int32_t file_number,
               const std::vector<std::uint8_t>* node_counts, RES_TYPE& overall) {
  FOLD_STATUSES(extreme, file.record.cell.status, overall.cell.status);
  const bool is_first = file_number == 1 && node_counts == nullptr;
  if (is_first) overall.nd.x.swap(file.record.nd.x);
  const float* const values = file.record.nd.x.data();
  const float* const magnitudes = file.magnitude.data();
  float* const running = overall.nd.x.data();
  std::int32_t* const source = overall.nd.source.data();
  const std::int64_t nodes = overall.node_count;
  with_kernels_of(extreme, [&](auto kernels) {
    if (is_first && overall.is_vector) {
      kernels.first_vectors(nodes, magnitudes, running, source);
    } else if (is_first) {
      kernels.first_scalars(nodes, running, source);
    } else if (overall.is_vector) {
      kernels.file_vectors(nodes, values, magnitudes, file_number, running, source);
    } else if (node_counts != nullptr) {
      kernels.counted_scalars(nodes, values, node_counts->data(), file_number, running, source);
    } else {
      kernels.file_scalars(nodes, values, file_number, running, source);
    }
  });
}

}  // namespace quillet
