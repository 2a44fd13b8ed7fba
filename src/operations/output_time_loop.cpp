#include "operations/output_time_loop.h"

#include <cmath>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {

void ANNOUNCE_OUTPUT_TIMES(const OperationJob& job, std::string_view one_time,
                           std::string_view all_times) {
  SAY_APART(job.time ? std::string(one_time) + AREAL(*job.time) : std::string(all_times));
}

std::string_view WHY_NOT_ORDINARY(const ResultSource& source, double time) {
  if (std::isnan(time)) {
    FAIL_READING(source.name(), "expected an output time, found one that is not a number");
  }
  if (time > last_ordinary_time) return stored_maximum_passed_over;
  const bool is_minimum = time == stored_minimum_time || time == minimum_marker_time;
  return is_minimum ? stored_minimum_passed_over : "";
}

void PASS_MARKER_MAPS(ResultSource& source) {
  while (!source.at_end()) {
    const auto time = static_cast<float>(source.next_time());
    if (!IS_MARKER_MAP(time)) return;
    SAY(std::string(marker_map_passed_over) + AREAL(time));
    source.pass_next();
  }
}

void REWRITE_OUTPUT_TIMES(OperationJob& job, const ResultShape& written,
                          const std::function<void(RES_TYPE& step)>& change) {
  ResultSource& source = *job.inputs.sources.front();
  RES_TYPE& step = job.work.step;
  job.output.prepare(written, job.time ? 1 : source.likely_time_count());
  if (job.time) {
    job.inputs.find_time(*job.time, job.tolerance);
    source.read_at_time(*job.time, job.tolerance, step);
    change(step);
    job.output.write_time(step);
    return;
  }
  for (PASS_MARKER_MAPS(source); !source.at_end(); PASS_MARKER_MAPS(source)) {
    source.read_next(step);
    change(step);
    job.output.write_time(step);
  }
}

void CLOSE_FILES_AND_EXIT(OperationJob& job) {
  SAY_APART("Closing files and exiting");
  SAY("");
  job.output.close();
}

}  // namespace quillet
