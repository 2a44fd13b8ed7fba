// The temporary file under which an output grows, beside its final name and called like it with
// ".part" behind: a final name means a complete file, and a failed run leaves an earlier result
// alone.
#pragma once

#include <string>

#include "support/system_files.h"

namespace quillet {

std::string PART_NAME(const std::string& file_name);

class PartFile {
 public:
  PartFile() = default;
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  // Leaves what is there, closed.
  ~PartFile();

  // Creates the file, empty, for an output of this final name, and locks it as long as it is open
  // here. Returns the system's reason when that cannot be done: also for a folder in the place of
  // the final name, and for a link or anything but a regular file in that of the temporary one.
  // Ends the run when another run is writing this output.
  std::string create(const std::string& final_name);

  bool is_open() const { return file != no_file; }
  SystemFile handle() const { return file; }
  const std::string& name() const { return part_name; }

  // Closes the file and gives it its final name. Returns the system's reason when that fails.
  std::string complete();

  // Closes and removes the file.
  void remove();

 private:
  std::string open_and_lock();
  void close();

  std::string final_name;
  std::string part_name;
  SystemFile file = no_file;
};

}  // namespace quillet
