#include "support/reading_ahead.h"

#include <algorithm>
#include <system_error>

#include "support/work_crew.h"

namespace quillet {
namespace {

bool read_byte(SystemFile file, std::int64_t position) {
  char byte = 0;
  return READ_SOME_AT(file, position, &byte, 1) == 1;
}

bool gains(SystemFile file, std::int64_t position, const ReadingAheadLimits& limits) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  if (!read_byte(file, position)) return false;
  const Clock::duration wait = Clock::now() - start;
  return wait >= limits.shortest_wait && wait <= limits.longest_wait;
}

}  // namespace

ReadingAhead::ReadingAhead(const FileStretch& stretch, const ReadingAheadLimits& limits)
    : end(std::min(stretch.end, stretch.begin + limits.most)), next(stretch.begin) {
  if (!WORK_CREW().has_helpers() || end - stretch.begin < limits.least) return;
  std::int64_t size = 0;
  std::string reason;
  file = OPEN_REGULAR_FILE(stretch.name, size, reason);
  if (file == no_file || !gains(file, (stretch.begin + stretch.end) / 2, limits)) return;
  try {
    thread = std::thread([this] { read(); });
  } catch (const std::system_error&) {  // the system gives no more threads
  }
}

ReadingAhead::~ReadingAhead() {
  is_ending = true;
  if (thread.joinable()) thread.join();
  if (file != no_file) CLOSE_SYSTEM_FILE(file);
}

// A byte here and there is enough: the system takes it for a file that is read in order, and brings
// what follows in large pieces.
void ReadingAhead::read() {
  constexpr std::int64_t step = std::int64_t{16} << 10;
  while (next < end && !is_ending && read_byte(file, next)) next += step;
}

}  // namespace quillet
