#include "support/part_file.h"

#include <utility>

#include "support/console.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {

std::string PART_NAME(const std::string& file_name) {
  return file_name + ".part";
}

PartFile::~PartFile() {
  close();
}

std::string PartFile::create(const std::string& name) {
  final_name = name;
  part_name = PART_NAME(name);
  std::string reason;
  // Noticed now, not when all the work is done.
  if (!MAY_BE_REPLACED(final_name, reason)) return reason;
  reason = open_and_lock();
  // Emptied only under the lock: another run may be writing it.
  if (reason.empty() && !CUT_FILE(file, 0)) reason = SYSTEM_REASON();
  if (!reason.empty()) close();
  return reason;
}

std::string PartFile::open_and_lock() {
  for (;;) {
    END_IF_INTERRUPTED();
    std::string reason;
    file = OPEN_OUTPUT_FILE(part_name, reason);
    if (file == no_file) return reason;
    if (!LOCK_SYSTEM_FILE(file)) {
      FAIL_RUN("ERROR - Output file is being written by another run: " + QUOTED(final_name));
    }
    // Another run may have completed or removed the file between its opening and its locking here:
    // then the name stands for another file, or for none.
    if (NAMES_SYSTEM_FILE(part_name, file)) return "";
    close();
  }
}

// The lock is kept until the file has its name: the next run makes a file of its own.
std::string PartFile::complete() {
  if (!SYSTEM_FILE_IS_WRITTEN(file) || !RENAME_FILE(part_name, final_name)) return SYSTEM_REASON();
  close();
  RUN_TALLY().completed_outputs.push_back(final_name);
  return "";
}

void PartFile::remove() {
  REMOVE_FILE(part_name);
  close();
}

void PartFile::close() {
  if (file != no_file) CLOSE_SYSTEM_FILE(std::exchange(file, no_file));
}

}  // namespace quillet
