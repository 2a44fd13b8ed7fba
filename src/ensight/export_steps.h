// What an export says and completes, in its order. While the crew writes a file, the main thread
// goes on to the next ones; what is to be said of them waits for its turn.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ensight/file_ahead.h"
#include "support/console.h"

namespace quillet {

class ExportSteps {
 public:
  // The crew writes the files, where there are helpers and so many bytes of values that these gain.
  explicit ExportSteps(std::int64_t bytes_of_values);

  bool are_ahead() const { return is_ahead; }

  // Shows the line: at once, or when all before it has been told.
  void say(const std::string& line);

  // Calls `tell` at its turn: at once when nothing waits before it and no file is named. With a
  // file it waits until something else is to be told, or the file is written and its turn has come.
  void then(std::function<void()> tell, std::shared_ptr<const FileAhead> file = nullptr);

  // Tells what can be told without waiting for a file.
  void tell_what_is_written();

  void tell_all();

 private:
  struct Step {
    std::function<void()> tell;
    std::shared_ptr<const FileAhead> file;
  };

  void tell_first();

  bool is_ahead;
  std::deque<Step> steps;
  std::optional<LinesOwed> owed;  // while there are steps
};

}  // namespace quillet
