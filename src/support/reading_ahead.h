// Brings the beginning of what will be read into the system's memory while the processors are busy
// with another file: one file that is read in order leaves most disks waiting.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

#include "support/system_files.h"

namespace quillet {

// Bytes of a file, `end` not among them.
struct FileStretch {
  std::string name;
  std::int64_t begin = 0;
  std::int64_t end = 0;
};

struct ReadingAheadLimits {
  std::int64_t least = std::int64_t{32} << 20;  // bytes that are worth a thread
  std::int64_t most = std::int64_t{256} << 20;
  // How long the disk may take for one byte. Sooner it is in memory; a disk that takes longer has
  // to move its heads, and would move them between two files.
  std::chrono::microseconds shortest_wait{40};
  std::chrono::microseconds longest_wait{3000};
};

class ReadingAhead {
 public:
  // Begins where threads may help and the disk is of the kind that gains. A file that cannot be
  // read is left to whoever reads it in earnest. A stretch is expected to end with its file.
  explicit ReadingAhead(const FileStretch& stretch, const ReadingAheadLimits& limits = {});
  ReadingAhead(const ReadingAhead&) = delete;
  ReadingAhead& operator=(const ReadingAhead&) = delete;
  // Ends it, however far it has come.
  ~ReadingAhead();

  bool has_begun() const { return thread.joinable(); }
  // How far it has come.
  std::int64_t position() const { return next; }

 private:
  void read();

  SystemFile file = no_file;
  std::int64_t end;
  std::atomic<std::int64_t> next;
  std::atomic<bool> is_ending = false;
  std::thread thread;
};

}  // namespace quillet
