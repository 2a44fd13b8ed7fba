#include "ensight/file_ahead.h"

#include <new>
#include <utility>

#include "support/console.h"
#include "support/system_files.h"

namespace quillet {

FileAhead::FileAhead(const std::string& file_name)
    : unit(file_name, OutputUnit::Replace::directly) {}

FileAhead::~FileAhead() {
  job.take_back();
  if (!has_turn) REMOVE_FILE(unit.name());
}

void FileAhead::write_ahead(std::function<void()> write) {
  is_handed_out = true;
  unit.tell_failures_when_complete();
  job.start([this, write = std::move(write)] {
    try {
      write();
      unit.end_writing();
    } catch (const std::bad_alloc&) {
      has_memory = false;
    }
  });
}

void FileAhead::take_turn() {
  has_turn = true;
  job.finish();
  if (!has_memory) FAIL_ALLOCATION();
}

}  // namespace quillet
