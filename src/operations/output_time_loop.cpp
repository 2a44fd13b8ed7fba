#include "operations/output_time_loop.h"

#include <cmath>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {

void ANNOUNCE_OUTPUT_TIMES(const OperationRun& run, std::string_view one_time,
                           std::string_view all_times) {
  SAY_APART(run.time ? std::string(one_time) + AREAL(*run.time) : std::string(all_times));
}

std::string_view WHY_NOT_ORDINARY(const ResultSource& source, double time) {
  if (std::isnan(time)) {
    FAIL_READING(source.name(), "expected an output time, found one that is not a number");
  }
  if (time > last_ordinary_time) return "Skipping times above 99,998, time found: ";
  const bool is_minimum = time == stored_minimum_time || time == minimum_marker_time;
  return is_minimum ? "Skipping stored minimum, time found: " : "";
}

void PASS_MARKER_MAPS(ResultSource& source) {
  while (!source.at_end()) {
    const auto time = static_cast<float>(source.next_time());
    if (!IS_MARKER_MAP(time)) return;
    SAY("Skipping marker time, time found: " + AREAL(time));
    source.pass_next();
  }
}

void REWRITE_OUTPUT_TIMES(OperationRun& run, const ResultShape& written,
                          const std::function<void(RES_TYPE& step)>& change) {
  ResultSource& source = *run.inputs.sources.front();
  RES_TYPE& step = run.work.step;
  run.output.prepare(written, run.time ? 1 : source.likely_time_count());
  if (run.time) {
    run.inputs.find_time(*run.time, run.tolerance);
    source.read_at_time(*run.time, run.tolerance, step);
    change(step);
    run.output.write_time(step);
    return;
  }
  for (PASS_MARKER_MAPS(source); !source.at_end(); PASS_MARKER_MAPS(source)) {
    source.read_next(step);
    change(step);
    run.output.write_time(step);
  }
}

void CLOSE_FILES_AND_EXIT(OperationRun& run) {
  SAY_APART("Closing files and exiting");
  SAY("");
  run.output.close();
}

}  // namespace quillet
