// The variable files of one dataset. While one output time is read, the crew writes those that were
// read before it: formatting numbers and handing them to the system takes most of an export, and
// one file does not depend on another.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ensight/ensight_mesh.h"
#include "ensight/variable_file.h"
#include "results/results_record.h"
#include "support/console.h"

namespace quillet {

class VariableFiles {
 public:
  // For `file_count` files of a dataset with `value_count` values, one for each node or cell. Mesh
  // and description outlive the object. `description` is the first line of each file.
  VariableFiles(const EnsightMesh& mesh, ValuePlace place, const std::string& description,
                std::int32_t value_count, bool is_vector, std::int64_t file_count);
  VariableFiles(const VariableFiles&) = delete;
  VariableFiles& operator=(const VariableFiles&) = delete;
  // Abandons what was not finished. Of files whose lines were not shown nothing is left.
  ~VariableFiles();

  // Room for the output time that the next file is of, every status 1.
  RES_TYPE& next_record();

  // Writes that output time as a text file, with console lines, which come in their order before
  // anything else is shown. Ends the run when a file cannot be written.
  void write(const std::string& file_name);

  // Returns when all files are complete and their lines have been shown.
  void finish();

 private:
  struct File;

  std::int64_t most_ahead(std::int64_t file_count) const;
  void hand_out(File& file);
  void fill(File& file) const;
  void complete_first();
  void tell_all();

  const EnsightMesh& mesh;
  ValuePlace place;
  const std::string& description;
  std::int32_t value_count;
  bool is_vector;
  std::size_t room;  // for files that are being written, 0 where each is complete at once
  std::unique_ptr<File> next;
  std::deque<std::unique_ptr<File>> files;  // opened, in their order
  std::vector<std::unique_ptr<File>> spare;
  std::optional<LinesOwed> owed;
};

}  // namespace quillet
