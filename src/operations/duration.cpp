#include "operations/duration.h"

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "operations/duration_kernel.h"
#include "operations/extreme_kernel.h"
#include "operations/output_time_loop.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

constexpr double never = -99999.0;

// What is folded over the intervals between output times.
struct Interval {
  const LargeArray<float>& initial;  // at the first output time
  const LargeArray<float>& from;
  const LargeArray<float>& to;
  double start = 0;  // hours
  double end = 0;
};
using FoldInterval = std::function<void(const Interval& interval)>;

void fail_backwards(const ResultSource& source, float time, float previous) {
  FAIL_READING(source.name(),
               "expected an output time of " + AREAL(previous) + " or later, found " + AREAL(time));
}

// Reads the next ordinary output time; false when there is none.
bool read_ordinary(ResultSource& source, RES_TYPE& step) {
  while (!source.at_end()) {
    const std::string_view reason = WHY_NOT_ORDINARY(source, source.next_time());
    if (reason.empty()) break;
    SAY(std::string(reason) + AREAL(static_cast<float>(source.next_time())));
    source.pass_next();
  }
  if (source.at_end()) return false;
  source.read_next(step);
  if (step.is_vector) {
    VECTOR_MAGNITUDES(step.nd.x.data(), step.nd.y.data(), step.node_count, step.nd.x.data());
  }
  return true;
}

void fold_output_times(OperationJob& job, const FoldInterval& fold) {
  ResultSource& source = *job.inputs.sources.front();
  RES_TYPE& step = job.work.step;
  LargeArray<std::int8_t>& active = job.work.result.cell.status;
  if (!read_ordinary(source, step)) {
    SAY("WARNING - No output times in " + QUOTED(source.name()));
    return;
  }
  LargeArray<float>& from = job.work.previous;
  const LargeArray<float>& initial = job.work.initial.empty() ? from : job.work.initial;
  from = step.nd.x;
  if (!job.work.initial.empty()) job.work.initial = step.nd.x;
  float previous_time = step.time;
  FOLD_STATUSES(Extreme::maximum, step.cell.status, active);
  // An interval of no length: what holds at the first output time holds though no other follows.
  fold({initial, from, from, previous_time, previous_time});
  while (read_ordinary(source, step)) {
    if (step.time < previous_time) fail_backwards(source, step.time, previous_time);
    fold({initial, from, step.nd.x, previous_time, step.time});
    FOLD_STATUSES(Extreme::maximum, step.cell.status, active);
    from.swap(step.nd.x);
    previous_time = step.time;
  }
}

void write_result(OperationJob& job) {
  RES_TYPE& result = job.work.result;
  ROUND_TO_REALS(result.node_count, job.work.hours.data(), result.nd.x.data());
  result.is_vector = false;
  result.time = 0;
  job.output.prepare(SHAPE_OF(result), 1);
  job.output.write_time(result);
  CLOSE_FILES_AND_EXIT(job);
}

}  // namespace

void RUN_DURATION(OperationJob& job) {
  SAY_APART("Processing duration above " + AREAL(job.cutoff));
  fold_output_times(job, [&](const Interval& interval) {
    ADD_DURATION_ABOVE(job.work.result.node_count, interval.from.data(), interval.to.data(),
                       interval.start, interval.end, job.cutoff, job.work.hours.data());
  });
  write_result(job);
}

void RUN_TIME_OF_INCREASE(OperationJob& job) {
  SAY_APART("Processing time of increase by " + AREAL(job.cutoff));
  std::fill(job.work.hours.begin(), job.work.hours.end(), never);
  fold_output_times(job, [&](const Interval& interval) {
    NOTE_FIRST_INCREASE(job.work.result.node_count, interval.initial.data(), interval.from.data(),
                        interval.to.data(), interval.start, interval.end, job.cutoff, never,
                        job.work.hours.data());
  });
  write_result(job);
}

}  // namespace quillet
