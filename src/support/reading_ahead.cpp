#include "support/reading_ahead.h"

#include <algorithm>
#include <new>
#include <string>
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

bool MAY_BE_READ_AHEAD(const FileStretch& stretch, const ReadingAheadLimits& limits) {
  return WORK_CREW().has_helpers() && stretch.end - stretch.begin >= limits.least;
}

ReadingAhead::ReadingAhead(const FileStretch& stretch, const ReadingAheadLimits& limits)
    : end(std::min(stretch.end, stretch.begin + limits.most)), next(stretch.begin) {
  if (!MAY_BE_READ_AHEAD(stretch, limits)) return;
  std::int64_t size = 0;
  std::string reason;
  file = OPEN_REGULAR_FILE(stretch.name, size, reason);
  if (file == no_file) return;
  if (gains(file, (stretch.begin + stretch.end) / 2, limits)) begin();
  if (!has_begun()) CLOSE_SYSTEM_FILE(file);
}

ReadingAhead::~ReadingAhead() {
  if (!has_begun()) return;
  is_ending = true;
  thread.join();
  CLOSE_SYSTEM_FILE(file);
}

// A hint: a system that gives no thread, or no memory for one, does without.
void ReadingAhead::begin() {
  try {
    thread = std::thread([this] { read(); });
  } catch (const std::system_error&) {
  } catch (const std::bad_alloc&) {
  }
}

// In the smallest steps that the system takes for reading in order: what follows it then brings by
// itself, in large pieces. A byte is enough; copying all of them would take a processor's time.
void ReadingAhead::read() {
  constexpr std::int64_t page = 4096;
  while (next < end && !is_ending && read_byte(file, next)) next += page;
}

}  // namespace quillet
