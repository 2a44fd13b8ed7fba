// A file of an export, under its own name from the start. The main thread writes it when its turn
// has come, or the crew before.
#pragma once

#include <functional>
#include <string>

#include "support/output_unit.h"
#include "support/work_crew.h"

namespace quillet {

class FileAhead {
 public:
  // Creates the file, as OutputUnit does.
  explicit FileAhead(const std::string& file_name);
  FileAhead(const FileAhead&) = delete;
  FileAhead& operator=(const FileAhead&) = delete;
  // Removes the file when its turn has not come.
  ~FileAhead();

  OutputUnit& out() { return unit; }

  // Hands the writing to the crew, all of it. It may throw std::bad_alloc.
  void write_ahead(std::function<void()> write);

  bool is_ahead() const { return is_handed_out; }
  bool is_under_way() const { return job.is_under_way(); }

  // Returns when it is written, as far as the system allows.
  void finish() { job.finish(); }

  // Its turn has come: finish(). Ends the run when there was no memory for it.
  void take_turn();

  // After its turn: the file is complete. Ends the run when it is not.
  void complete() { unit.complete(); }

 private:
  OutputUnit unit;
  bool is_handed_out = false;
  bool has_turn = false;
  bool has_memory = true;
  CrewJob job;  // last: it ends before what it works on
};

}  // namespace quillet
