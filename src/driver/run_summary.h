// --summary: what a run did, at a glance, on standard error.
#pragma once

#include <string>
#include <vector>

namespace quillet {

// What the command line asked for, as far as it is known when the run ends.
struct RequestedRun {
  std::string operation;            // "-max (maximum)"
  std::vector<std::string> inputs;  // file names
};

// The lines of the summary. `seconds` is what the run took. What was done stands in the run's tally
// and in the values that were written; outputs are looked up for their sizes.
std::string RUN_SUMMARY(const RequestedRun& run, double seconds);

}  // namespace quillet
