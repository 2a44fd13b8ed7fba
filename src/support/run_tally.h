// What a run has done so far, for those who want to know: the progress line, the summary, the exit
// status of --strict. Kept by the units that do it; nothing that a run computes depends on it. The
// main thread alone writes it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillet {

struct RunTally {
  // Output times of the inputs: how many the run will pass (a guess) and has passed, read or not,
  // and how many it has read, with the bytes of their values. What is read beside the inputs (the
  // water levels of the wet/dry test) is left out.
  std::int64_t times_to_pass = 0;
  std::int64_t times_passed = 0;
  std::int64_t times_read = 0;
  std::int64_t bytes_read = 0;

  std::int64_t times_written = 0;              // output times of results, and maps
  std::vector<std::string> completed_outputs;  // file names

  // Lines on the console.
  int errors = 0;
  int warnings = 0;
};

RunTally& RUN_TALLY();

// The run has moved on past output times of an input.
inline void NOTE_TIMES_PASSED(std::int64_t count = 1) {
  RUN_TALLY().times_passed += count;
}

// An output time of an input was read.
inline void NOTE_TIME_READ(std::int64_t bytes) {
  ++RUN_TALLY().times_read;
  RUN_TALLY().bytes_read += bytes;
}

// An output time, or a map that stands in the place of one, was written.
inline void NOTE_TIME_WRITTEN() {
  ++RUN_TALLY().times_written;
}

}  // namespace quillet
