#include "results/extreme_kernels.h"

#include <algorithm>

#include "support/kernel_target.h"
#include "support/vector_magnitude.h"

// Each kernel is a loop over plain arrays. The conditional stores are written as selections, so
// that they vectorise.

namespace quillet {
namespace {

struct Greater {
  template <typename Value>
  bool operator()(Value candidate, Value running) const {
    return candidate > running;
  }
};

struct Smaller {
  template <typename Value>
  bool operator()(Value candidate, Value running) const {
    return candidate < running;
  }
};

// The mark is what a won node is tagged with: the output time, or the number of the file.
template <typename Wins, typename Mark>
[[gnu::always_inline]] inline void keep_winning_scalars(std::int64_t count,
                                                        const float* __restrict value, Mark mark,
                                                        float* __restrict running,
                                                        Mark* __restrict marks) {
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = Wins{}(value[i], running[i]);
    running[i] = wins ? value[i] : running[i];
    marks[i] = wins ? mark : marks[i];
  }
}

template <typename Wins>
[[gnu::always_inline]] inline void keep_winning_vectors(
    std::int64_t count, const float* __restrict x, const float* __restrict y, float time,
    float* __restrict running_x, float* __restrict running_y, float* __restrict magnitude,
    float* __restrict times) {
  for (std::int64_t i = 0; i < count; ++i) {
    const float length = VECTOR_MAGNITUDE(x[i], y[i]);
    const bool wins = Wins{}(length, magnitude[i]);
    running_x[i] = wins ? x[i] : running_x[i];
    running_y[i] = wins ? y[i] : running_y[i];
    magnitude[i] = wins ? length : magnitude[i];
    times[i] = wins ? time : times[i];
  }
}

template <typename Wins>
[[gnu::always_inline]] inline void keep_winning_file_vectors(
    std::int64_t count, const float* __restrict x, const float* __restrict y,
    const float* __restrict magnitude, std::int32_t file, float* __restrict overall_x,
    float* __restrict overall_y, std::int32_t* __restrict source) {
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = Wins{}(magnitude[i], VECTOR_MAGNITUDE(overall_x[i], overall_y[i]));
    overall_x[i] = wins ? x[i] : overall_x[i];
    overall_y[i] = wins ? y[i] : overall_y[i];
    source[i] = wins ? file : source[i];
  }
}

template <typename Wins>
[[gnu::always_inline]] inline void keep_winning_counted_scalars(
    std::int64_t count, const float* __restrict value, const std::uint8_t* __restrict counts,
    std::int32_t file, float* __restrict overall, std::int32_t* __restrict source) {
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = (counts[i] != 0) & Wins{}(value[i], overall[i]);
    overall[i] = wins ? value[i] : overall[i];
    source[i] = wins ? file : source[i];
  }
}

// Signed bytes throughout: -128 stays what it is.
inline std::int8_t absolute(std::int8_t status) {
  return static_cast<std::int8_t>(status < 0 ? -status : status);
}

template <typename Wins>
[[gnu::always_inline]] inline void keep_winning_statuses(std::int64_t count,
                                                         const std::int8_t* __restrict status,
                                                         std::int8_t* __restrict running) {
  for (std::int64_t i = 0; i < count; ++i) {
    const std::int8_t candidate = absolute(status[i]);
    const std::int8_t held = absolute(running[i]);
    running[i] = Wins{}(candidate, held) ? candidate : held;
  }
}

// One function per kernel, so that each is built for the machine; the test stands outside the loop.
// Inlining loses the promises of the parameters above, so they stand here again.

QUILLET_KERNEL void fold_scalars(Extreme extreme, std::int64_t count, const float* __restrict value,
                                 float time, float* __restrict running, float* __restrict times) {
  if (extreme == Extreme::maximum) {
    keep_winning_scalars<Greater>(count, value, time, running, times);
  } else {
    keep_winning_scalars<Smaller>(count, value, time, running, times);
  }
}

QUILLET_KERNEL void fold_vectors(Extreme extreme, std::int64_t count, const float* __restrict x,
                                 const float* __restrict y, float time, float* __restrict running_x,
                                 float* __restrict running_y, float* __restrict magnitude,
                                 float* __restrict times) {
  if (extreme == Extreme::maximum) {
    keep_winning_vectors<Greater>(count, x, y, time, running_x, running_y, magnitude, times);
  } else {
    keep_winning_vectors<Smaller>(count, x, y, time, running_x, running_y, magnitude, times);
  }
}

QUILLET_KERNEL void fold_statuses(Extreme extreme, std::int64_t count,
                                  const std::int8_t* __restrict status,
                                  std::int8_t* __restrict running) {
  if (extreme == Extreme::maximum) {
    keep_winning_statuses<Greater>(count, status, running);
  } else {
    keep_winning_statuses<Smaller>(count, status, running);
  }
}

QUILLET_KERNEL void combine_scalars(Extreme extreme, std::int64_t count,
                                    const float* __restrict value, std::int32_t file,
                                    float* __restrict overall, std::int32_t* __restrict source) {
  if (extreme == Extreme::maximum) {
    keep_winning_scalars<Greater>(count, value, file, overall, source);
  } else {
    keep_winning_scalars<Smaller>(count, value, file, overall, source);
  }
}

QUILLET_KERNEL void combine_counted_scalars(Extreme extreme, std::int64_t count,
                                            const float* __restrict value,
                                            const std::uint8_t* __restrict counts,
                                            std::int32_t file, float* __restrict overall,
                                            std::int32_t* __restrict source) {
  if (extreme == Extreme::maximum) {
    keep_winning_counted_scalars<Greater>(count, value, counts, file, overall, source);
  } else {
    keep_winning_counted_scalars<Smaller>(count, value, counts, file, overall, source);
  }
}

QUILLET_KERNEL void combine_vectors(Extreme extreme, std::int64_t count, const float* __restrict x,
                                    const float* __restrict y, const float* __restrict magnitude,
                                    std::int32_t file, float* __restrict overall_x,
                                    float* __restrict overall_y, std::int32_t* __restrict source) {
  if (extreme == Extreme::maximum) {
    keep_winning_file_vectors<Greater>(count, x, y, magnitude, file, overall_x, overall_y, source);
  } else {
    keep_winning_file_vectors<Smaller>(count, x, y, magnitude, file, overall_x, overall_y, source);
  }
}

}  // namespace

std::int8_t INITIAL_STATUS(Extreme extreme) {
  return extreme == Extreme::maximum ? 0 : 1;
}

void SIZE_FILE_EXTREME(FileExtreme& file, std::int32_t node_count, std::int32_t cell_count,
                       bool is_vector) {
  SIZE_RECORD(file.record, node_count, cell_count, is_vector);
  if (is_vector) SIZE_ARRAY(file.magnitude, node_count);
  SIZE_ARRAY(file.time, node_count);
}

void RESET_FILE_EXTREME(Extreme extreme, FileExtreme& file) {
  RESET_RECORD(file.record, INITIAL_STATUS(extreme));
  std::fill(file.magnitude.begin(), file.magnitude.end(), 0.0F);
  std::fill(file.time.begin(), file.time.end(), 0.0F);
}

void FOLD_OUTPUT_TIME(Extreme extreme, const RES_TYPE& step, FileExtreme& file) {
  ND_RES_TYPE& running = file.record.nd;
  const std::int64_t nodes = step.node_count;
  if (step.is_vector) {
    fold_vectors(extreme, nodes, step.nd.x.data(), step.nd.y.data(), step.time, running.x.data(),
                 running.y.data(), file.magnitude.data(), file.time.data());
  } else {
    fold_scalars(extreme, nodes, step.nd.x.data(), step.time, running.x.data(), file.time.data());
  }
  FOLD_STATUSES(extreme, step.cell.status, file.record.cell.status);
}

void ADOPT_STORED_EXTREME(float time, FileExtreme& file) {
  const RES_TYPE& record = file.record;
  if (record.is_vector) {
    VECTOR_MAGNITUDES(record.nd.x.data(), record.nd.y.data(), record.node_count,
                      file.magnitude.data());
  }
  std::fill(file.time.begin(), file.time.end(), time);
}

void FOLD_STATUSES(Extreme extreme, std::span<const std::int8_t> status,
                   std::span<std::int8_t> running) {
  fold_statuses(extreme, static_cast<std::int64_t>(running.size()), status.data(), running.data());
}

void FOLD_FILE(Extreme extreme, const FileExtreme& file, std::int32_t file_number,
               const std::vector<std::uint8_t>* node_counts, RES_TYPE& overall) {
  FOLD_STATUSES(extreme, file.record.cell.status, overall.cell.status);
  const ND_RES_TYPE& from = file.record.nd;
  ND_RES_TYPE& to = overall.nd;
  const std::int64_t nodes = overall.node_count;
  if (overall.is_vector) {
    combine_vectors(extreme, nodes, from.x.data(), from.y.data(), file.magnitude.data(),
                    file_number, to.x.data(), to.y.data(), to.source.data());
  } else if (node_counts != nullptr) {
    combine_counted_scalars(extreme, nodes, from.x.data(), node_counts->data(), file_number,
                            to.x.data(), to.source.data());
  } else {
    combine_scalars(extreme, nodes, from.x.data(), file_number, to.x.data(), to.source.data());
  }
}

}  // namespace quillet
