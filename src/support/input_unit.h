// One file opened for reading, read at any position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "support/system_files.h"

namespace quillet {

// Bytes of a file, `end` not among them.
struct FileStretch {
  std::string name;
  std::int64_t begin = 0;
  std::int64_t end = 0;
};

class InputUnit {
 public:
  InputUnit() = default;
  // Opens the file. When it cannot be opened (a folder cannot), asks the user to try again; ends
  // the run when there is nobody to ask.
  explicit InputUnit(const std::string& file_name);
  InputUnit(const InputUnit&) = delete;
  InputUnit& operator=(const InputUnit&) = delete;
  InputUnit(InputUnit&& other) noexcept;
  InputUnit& operator=(InputUnit&& other) noexcept;
  ~InputUnit();

  const std::string& name() const { return file_name; }

  // Length in bytes when the file was opened.
  std::int64_t size() const { return file_size; }

  // Reads up to `count` bytes from `position` (bytes from the start). Returns how many there were;
  // fewer only at the end of the file. An error of the system ends the run.
  std::int64_t read_at(std::int64_t position, void* destination, std::int64_t count) const;

  // The same for a helper, who tells nothing: -1 for an error of the system.
  std::int64_t try_to_read_at(std::int64_t position, void* destination, std::int64_t count) const;

  void close();

 private:
  std::string file_name;
  SystemFile file = no_file;
  std::int64_t file_size = 0;
};

}  // namespace quillet
