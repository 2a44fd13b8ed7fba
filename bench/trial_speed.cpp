// Times what it takes to try XMDF files before they are opened: nothing but that is the cost of the
// trial, since the run does everything else without it too.
//
//     trial_speed THREADS WORD FILE...
//
// The median of 61 trials, in milliseconds, for each file: of the datasets whose paths hold the
// word, or with "all" of all.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/work_crew.h"
#include "xf/xf_trial.h"

namespace {

using Clock = std::chrono::steady_clock;

double median_milliseconds(const std::string& name, const quillet::XfTrialScope& scope) {
  std::vector<double> all;
  for (int i = 0; i < 61; ++i) {
    const auto start = Clock::now();
    const quillet::XfStatus tried = quillet::XF_TRY_FILE(name, scope);
    const std::chrono::duration<double, std::milli> time = Clock::now() - start;
    if (!tried.ok()) std::fprintf(stderr, "%s: %s\n", name.c_str(), tried.reason.c_str());
    all.push_back(time.count());
  }
  std::sort(all.begin(), all.end());
  return all[all.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return 2;
  const std::string word = argv[2];
  quillet::XfTrialScope scope;
  if (word != "all") scope.words = {word};
  quillet::WORK_CREW().set_thread_count(std::atoi(argv[1]));
  for (int i = 3; i < argc; ++i) std::printf("%.2f\n", median_milliseconds(argv[i], scope));
  return 0;
}
