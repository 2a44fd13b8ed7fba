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
int copy_output_times(OperationRun& run, ResultSource& source, const ReasonToSkip& reason_to_skip,
                      bool keeps_64_bits = false) {
  int skipped = 0;
  while (!source.at_end()) {
    const double time = source.next_time();
    const std::string_view reason = reason_to_skip(time);
    if (reason.empty()) {
      source.read_next(run.work.step);
      if (keeps_64_bits) {
        run.output.write_time_at(time, run.work.step);
      } else {
        run.output.write_time(run.work.step);
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

void RUN_KEEP(OperationRun& run) {
  SAY_APART("Keeping data at time " + AREAL(*run.time));
  REWRITE_OUTPUT_TIMES(run, run.shape, [](RES_TYPE&) {});
  CLOSE_FILES_AND_EXIT(run);
}

void RUN_REMOVE(OperationRun& run) {
  SAY_APART("Removing data at time " + AREAL(*run.time));
  ResultSource& source = *run.inputs.sources.front();
  run.output.prepare(run.shape, source.likely_time_count());
  const int removed = copy_output_times(run, source, [&](double hours) {
    const auto time = static_cast<float>(hours);
    return run.tolerance > std::fabs(time - *run.time) ? "Skipping time to remove, time found: "
                                                       : "";
  });
  if (removed == 0) SAY("WARNING - Time to remove was not found: " + AREAL(*run.time));
  CLOSE_FILES_AND_EXIT(run);
}

void RUN_RANGE(OperationRun& run) {
  SAY_APART("Keeping data from time " + AREAL(run.range_start) + " to time " +
            AREAL(run.range_end));
  ResultSource& source = *run.inputs.sources.front();
  run.output.prepare(run.shape, 0);
  bool kept_any = false;
  copy_output_times(run, source, [&](double hours) {
    const auto time = static_cast<float>(hours);
    const bool is_inside =
        time >= run.range_start - run.tolerance && time <= run.range_end + run.tolerance;
    kept_any = kept_any || is_inside;
    return is_inside ? "" : "Skipping time outside range, time found: ";
  });
  if (!kept_any) SAY("WARNING - No output times in the range.");
  CLOSE_FILES_AND_EXIT(run);
}

void RUN_CONCATENATE(OperationRun& run) {
  SAY_APART("Concatenating files.");
  std::optional<WrittenTime> last;
  std::int64_t likely_times = 0;
  for (const auto& source : run.inputs.sources) likely_times += source->likely_time_count();
  run.output.prepare(run.shape, likely_times);
  for (const auto& source : run.inputs.sources) {
    SAY_APART("Processing file: " + source->name());
    const bool is_short = source->has_short_times();
    copy_output_times(
        run, *source,
        [&](double hours) -> std::string_view {
          if (const auto reason = WHY_NOT_ORDINARY(*source, hours); !reason.empty()) return reason;
          const WrittenTime time{hours, is_short};
          if (last && !is_later(time, *last)) return "Skipping time already written, time found: ";
          last = time;
          return "";
        },
        true);
  }
  CLOSE_FILES_AND_EXIT(run);
}

}  // namespace quillet
