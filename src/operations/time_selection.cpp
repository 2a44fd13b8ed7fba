#include "operations/time_selection.h"

#include <cmath>
#include <functional>
#include <optional>
#include <string>

#include "operations/output_time_loop.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {
namespace {

// Empty for an output time that is kept; else what is said of it.
using ReasonToSkip = std::function<std::string_view(double time)>;

// Copies what is kept of one input. Returns how many output times were passed over.
int copy_output_times(OperationJob& job, ResultSource& source, const ReasonToSkip& reason_to_skip,
                      bool keeps_64_bits = false) {
  int skipped = 0;
  while (!source.at_end()) {
    const double time = source.next_time();
    const std::string_view reason = reason_to_skip(time);
    if (reason.empty()) {
      source.read_next(job.work.step);
      if (keeps_64_bits) {
        job.output.write_time_at(time, job.work.step);
      } else {
        job.output.write_time(job.work.step);
      }
      continue;
    }
    SAY(std::string(reason) + AREAL(static_cast<float>(time)));
    source.pass_next();
    ++skipped;
  }
  return skipped;
}

struct WrittenTime {
  double hours = 0;
  bool is_short = false;  // a 32-bit real in its file
};

// 0.1 h is the same time in 32 bits and in 64.
bool is_later(const WrittenTime& time, const WrittenTime& last) {
  if (!time.is_short && !last.is_short) return time.hours > last.hours;
  return static_cast<float>(time.hours) > static_cast<float>(last.hours);
}

}  // namespace

void RUN_KEEP(OperationJob& job) {
  SAY_APART("Keeping data at time " + AREAL(*job.time));
  REWRITE_OUTPUT_TIMES(job, job.shape, [](RES_TYPE&) {});
  CLOSE_FILES_AND_EXIT(job);
}

void RUN_REMOVE(OperationJob& job) {
  SAY_APART("Removing data at time " + AREAL(*job.time));
  ResultSource& source = *job.inputs.sources.front();
  job.output.prepare(job.shape, source.likely_time_count());
  const int removed = copy_output_times(job, source, [&](double hours) {
    const auto time = static_cast<float>(hours);
    return job.tolerance > std::fabs(time - *job.time) ? "Skipping time to remove, time found: "
                                                       : "";
  });
  if (removed == 0) SAY("WARNING - Time to remove was not found: " + AREAL(*job.time));
  CLOSE_FILES_AND_EXIT(job);
}

void RUN_RANGE(OperationJob& job) {
  SAY_APART("Keeping data from time " + AREAL(job.range_start) + " to time " +
            AREAL(job.range_end));
  ResultSource& source = *job.inputs.sources.front();
  job.output.prepare(job.shape, 0);
  bool kept_any = false;
  copy_output_times(job, source, [&](double hours) {
    const auto time = static_cast<float>(hours);
    const bool is_inside =
        time >= job.range_start - job.tolerance && time <= job.range_end + job.tolerance;
    kept_any = kept_any || is_inside;
    return is_inside ? "" : "Skipping time outside range, time found: ";
  });
  if (!kept_any) SAY("WARNING - No output times in the range.");
  CLOSE_FILES_AND_EXIT(job);
}

void RUN_CONCATENATE(OperationJob& job) {
  SAY_APART("Concatenating files.");
  std::optional<WrittenTime> last;
  std::int64_t likely_times = 0;
  for (const auto& source : job.inputs.sources) likely_times += source->likely_time_count();
  job.output.prepare(job.shape, likely_times);
  for (const auto& source : job.inputs.sources) {
    SAY_APART("Processing file: " + source->name());
    const bool is_short = source->has_short_times();
    copy_output_times(
        job, *source,
        [&](double hours) -> std::string_view {
          if (const auto reason = WHY_NOT_ORDINARY(*source, hours); !reason.empty()) return reason;
          const WrittenTime time{hours, is_short};
          if (last && !is_later(time, *last)) return "Skipping time already written, time found: ";
          last = time;
          return "";
        },
        true);
  }
  CLOSE_FILES_AND_EXIT(job);
}

}  // namespace quillet
