// The variable files of an export. While one output time is read, the crew writes those that were
// read before it: formatting numbers and handing them to the system takes most of an export, and
// one file does not depend on another.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "ensight/ensight_mesh.h"
#include "ensight/export_steps.h"
#include "ensight/variable_file.h"
#include "results/results_record.h"

namespace quillet {

class VariableFiles {
 public:
  // For datasets with `value_count` values, one for each node or cell. Mesh and steps outlive the
  // object, and the mesh the steps.
  VariableFiles(const EnsightMesh& mesh, ValuePlace place, std::int32_t value_count,
                ExportSteps& steps);
  VariableFiles(const VariableFiles&) = delete;
  VariableFiles& operator=(const VariableFiles&) = delete;
  ~VariableFiles();

  // The files that follow are of this dataset: `description` is the first line of each.
  void begin_dataset(const std::string& description, bool is_vector);

  // Room for the output time that the next file is of.
  RES_TYPE& next_record();

  // Writes that output time as a text file, with console lines, as steps of the export. Ends the
  // run when a file cannot be written.
  void write(const std::string& file_name);

 private:
  struct File;

  std::size_t most_ahead() const;
  std::unique_ptr<RES_TYPE> spare_record();
  void take_first_back();

  const EnsightMesh& mesh;
  ValuePlace place;
  std::int32_t value_count;
  ExportSteps& steps;
  std::string description;
  bool is_vector = false;
  std::size_t room = 0;  // for output times that are being written, 0 where each is written at once
  std::unique_ptr<RES_TYPE> next;
  std::deque<std::shared_ptr<File>> files;  // that have an output time, in their order
  std::vector<std::unique_ptr<RES_TYPE>> spare;
};

}  // namespace quillet
