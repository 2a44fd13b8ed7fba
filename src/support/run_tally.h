// What a run has done so far, for those who want to know: the progress line, the summary, the exit
// status of --strict. Kept by the units that do it; nothing that a run computes depends on it. The
// main thread alone writes it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillet {

struct RunTally {
  // Output times of the inputs: how many the run will pass, has passed, and has read on the way.
  // All are of one size.
  std::int64_t times_to_pass = 0;
  std::int64_t times_passed = 0;
  std::int64_t times_read = 0;
  std::int64_t bytes_per_time = 0;

  std::int64_t times_written = 0;
  std::vector<std::string> completed_outputs;  // file names

  // Lines on the console.
  int errors = 0;
  int warnings = 0;
};

RunTally& RUN_TALLY();

// An output time of an input was passed over.
inline void NOTE_TIME_PASSED() {
  ++RUN_TALLY().times_passed;
}

// An output time of an input was read.
inline void NOTE_TIME_READ() {
  ++RUN_TALLY().times_read;
  NOTE_TIME_PASSED();
}

}  // namespace quillet
