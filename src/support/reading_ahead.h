// Brings the beginning of what will be read into the system's memory while the processors are busy
// with another file: one file that is read in order leaves most disks waiting.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#include "support/input_unit.h"

namespace quillet {

struct ReadingAheadLimits {
  std::int64_t least = std::int64_t{32} << 20;  // bytes that are worth a thread
  std::int64_t most = std::int64_t{256} << 20;
  // How long the disk may take for one byte. Sooner it is in memory; a disk that takes longer has
  // to move its heads, and would move them between two files.
  std::chrono::microseconds shortest_wait{40};
  std::chrono::microseconds longest_wait{3000};
};

// Whether there are enough bytes, and threads may help.
bool MAY_BE_READ_AHEAD(const FileStretch& stretch, const ReadingAheadLimits& limits = {});

class ReadingAhead {
 public:
  // Begins where it may and the disk is of the kind that gains. A file that cannot be read is left
  // to whoever reads it in earnest.
  explicit ReadingAhead(const FileStretch& stretch, const ReadingAheadLimits& limits = {});
  ReadingAhead(const ReadingAhead&) = delete;
  ReadingAhead& operator=(const ReadingAhead&) = delete;
  // Ends it, however far it has come.
  ~ReadingAhead();

  bool has_begun() const { return thread.joinable(); }
  // How far it has come.
  std::int64_t position() const { return next; }

 private:
  void begin();
  void read();

  SystemFile file = no_file;
  std::int64_t end;
  std::atomic<std::int64_t> next;
  std::atomic<bool> is_ending = false;
  std::thread thread;
};

}  // namespace quillet
