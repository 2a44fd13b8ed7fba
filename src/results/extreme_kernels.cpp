#include "results/extreme_kernels.h"

#include <algorithm>

#include "support/kernel.h"
#include "support/vector_magnitude.h"

// Each kernel is a loop over plain arrays, without branches.

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
KERNEL_LOOP void keep_winning_scalars(std::int64_t count, const float* value, Mark mark,
                                      float* running, Mark* marks) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = Wins{}(value[i], running[i]);
    running[i] = SELECT(wins, value[i], running[i]);
    marks[i] = SELECT(wins, mark, marks[i]);
  }
}

template <typename Wins>
KERNEL_LOOP void keep_winning_vectors(std::int64_t count, const float* x, const float* y,
                                      float time, float* running_x, float* running_y,
                                      float* magnitude, float* times) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const float length = VECTOR_MAGNITUDE(x[i], y[i]);
    const bool wins = Wins{}(length, magnitude[i]);
    running_x[i] = SELECT(wins, x[i], running_x[i]);
    running_y[i] = SELECT(wins, y[i], running_y[i]);
    magnitude[i] = SELECT(wins, length, magnitude[i]);
    times[i] = SELECT(wins, time, times[i]);
  }
}

template <typename Wins>
KERNEL_LOOP void keep_winning_file_vectors(std::int64_t count, const float* x, const float* y,
                                           const float* magnitude, std::int32_t file,
                                           float* overall_x, float* overall_y,
                                           std::int32_t* source) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = Wins{}(magnitude[i], VECTOR_MAGNITUDE(overall_x[i], overall_y[i]));
    overall_x[i] = SELECT(wins, x[i], overall_x[i]);
    overall_y[i] = SELECT(wins, y[i], overall_y[i]);
    source[i] = SELECT(wins, file, source[i]);
  }
}

template <typename Wins>
KERNEL_LOOP void keep_winning_counted_scalars(std::int64_t count, const float* value,
                                              const std::uint8_t* counts, std::int32_t file,
                                              float* overall, std::int32_t* source) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wins = (counts[i] != 0) & Wins{}(value[i], overall[i]);
    overall[i] = SELECT(wins, value[i], overall[i]);
    source[i] = SELECT(wins, file, source[i]);
  }
}

// Signed bytes throughout: -128 stays what it is.
inline std::int8_t absolute(std::int8_t status) {
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

// The kernels: which of the two it is, is asked outside the loop.

KERNEL_LOOP void fold_scalars(Extreme extreme, std::int64_t count, const float* value, float time,
                              float* running, float* times) {
  if (extreme == Extreme::maximum) {
    keep_winning_scalars<Greater>(count, value, time, running, times);
  } else {
    keep_winning_scalars<Smaller>(count, value, time, running, times);
  }
}

KERNEL_LOOP void fold_vectors(Extreme extreme, std::int64_t count, const float* x, const float* y,
                              float time, float* running_x, float* running_y, float* magnitude,
                              float* times) {
  if (extreme == Extreme::maximum) {
    keep_winning_vectors<Greater>(count, x, y, time, running_x, running_y, magnitude, times);
  } else {
    keep_winning_vectors<Smaller>(count, x, y, time, running_x, running_y, magnitude, times);
  }
}

KERNEL_LOOP void fold_statuses(Extreme extreme, std::int64_t count, const std::int8_t* status,
                               std::int8_t* running) {
  if (extreme == Extreme::maximum) {
    keep_winning_statuses<Greater>(count, status, running);
  } else {
    keep_winning_statuses<Smaller>(count, status, running);
  }
}

KERNEL_LOOP void combine_scalars(Extreme extreme, std::int64_t count, const float* value,
                                 std::int32_t file, float* overall, std::int32_t* source) {
  if (extreme == Extreme::maximum) {
    keep_winning_scalars<Greater>(count, value, file, overall, source);
  } else {
    keep_winning_scalars<Smaller>(count, value, file, overall, source);
  }
}

KERNEL_LOOP void combine_counted_scalars(Extreme extreme, std::int64_t count, const float* value,
                                         const std::uint8_t* counts, std::int32_t file,
                                         float* overall, std::int32_t* source) {
  if (extreme == Extreme::maximum) {
    keep_winning_counted_scalars<Greater>(count, value, counts, file, overall, source);
  } else {
    keep_winning_counted_scalars<Smaller>(count, value, counts, file, overall, source);
  }
}

KERNEL_LOOP void combine_vectors(Extreme extreme, std::int64_t count, const float* x,
                                 const float* y, const float* magnitude, std::int32_t file,
                                 float* overall_x, float* overall_y, std::int32_t* source) {
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
    Kernel<fold_vectors>::run(extreme, nodes, step.nd.x.data(), step.nd.y.data(), step.time,
                              running.x.data(), running.y.data(), file.magnitude.data(),
                              file.time.data());
  } else {
    Kernel<fold_scalars>::run(extreme, nodes, step.nd.x.data(), step.time, running.x.data(),
                              file.time.data());
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
  Kernel<fold_statuses>::run(extreme, static_cast<std::int64_t>(running.size()), status.data(),
                             running.data());
}

void FOLD_FILE(Extreme extreme, const FileExtreme& file, std::int32_t file_number,
               const std::vector<std::uint8_t>* node_counts, RES_TYPE& overall) {
  FOLD_STATUSES(extreme, file.record.cell.status, overall.cell.status);
  const ND_RES_TYPE& from = file.record.nd;
  ND_RES_TYPE& to = overall.nd;
  const std::int64_t nodes = overall.node_count;
  if (overall.is_vector) {
    Kernel<combine_vectors>::run(extreme, nodes, from.x.data(), from.y.data(),
                                 file.magnitude.data(), file_number, to.x.data(), to.y.data(),
                                 to.source.data());
  } else if (node_counts != nullptr) {
    Kernel<combine_counted_scalars>::run(extreme, nodes, from.x.data(), node_counts->data(),
                                         file_number, to.x.data(), to.source.data());
  } else {
    Kernel<combine_scalars>::run(extreme, nodes, from.x.data(), file_number, to.x.data(),
                                 to.source.data());
  }
}

}  // namespace quillet
