#include "operations/time_selection.h"

#include <cmath>
#include <functional>
#include <string>

#include "operations/output_time_loop.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {
namespace {

// Empty for an output time that is kept; else what is said of it.
using ReasonToSkip = std::function<std::string_view(float time)>;

// Copies what is kept of one input. Returns how many output times were passed over.
int copy_output_times(OperationRun& run, ResultSource& source, const ReasonToSkip& reason_to_skip) {
  int skipped = 0;
  while (!source.at_end()) {
    const float time = source.next_time();
    const std::string_view reason = reason_to_skip(time);
    if (reason.empty()) {
      source.read_next(run.work.step);
      run.output.write_time(run.work.step);
      continue;
    }
    SAY(std::string(reason) + AREAL(time));
    source.pass_next();
    ++skipped;
  }
  return skipped;
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
  const int removed = copy_output_times(run, source, [&](float time) {
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
  copy_output_times(run, source, [&](float time) {
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
  bool wrote_any = false;
  float last_written = 0;
  const auto reason_to_skip = [&](float time) -> std::string_view {
    if (const auto reason = WHY_NOT_ORDINARY(time); !reason.empty()) return reason;
    if (wrote_any && time <= last_written) return "Skipping time already written, time found: ";
    wrote_any = true;
    last_written = time;
    return "";
  };
  std::int64_t likely_times = 0;
  for (const auto& source : run.inputs.sources) likely_times += source->likely_time_count();
  run.output.prepare(run.shape, likely_times);
  for (const auto& source : run.inputs.sources) {
    SAY_APART("Processing file: " + source->name());
    copy_output_times(run, *source, reason_to_skip);
  }
  CLOSE_FILES_AND_EXIT(run);
}

}  // namespace quillet
