#include "ensight/variable_files.h"

#include <algorithm>
#include <utility>

#include "results/written_values.h"
#include "support/console.h"
#include "support/output_unit.h"
#include "support/run_tally.h"
#include "support/work_crew.h"

namespace quillet {
namespace {

// Output times that are being written take this much memory at most.
constexpr std::int64_t bytes_ahead = std::int64_t{256} << 20;

// With the nodes that are wet and the buffer.
std::int64_t memory_of_file(const EnsightMesh& mesh, std::int32_t value_count, bool is_vector) {
  const std::int64_t values = std::int64_t{value_count} * (is_vector ? 2 : 1);
  return values * 4 + mesh.element_count + mesh.node_count +
         static_cast<std::int64_t>(OutputUnit::buffer_size);
}

}  // namespace

struct VariableFiles::File {
  explicit File(const std::string& name) : file(name) {}

  void write(const EnsightMesh& of_mesh, ValuePlace at, const std::string& first_line) {
    file.out().expect_size(VARIABLE_FILE_SIZE(of_mesh, at, record->is_vector));
    WRITE_VARIABLE_VALUES(of_mesh, at, *record, first_line, file.out());
    if (WRITTEN_VALUES().are_wanted) values = VALUES_OF_VARIABLE(of_mesh, at, *record);
  }

  std::unique_ptr<RES_TYPE> record;
  WrittenValues values;
  FileAhead file;  // last: what writes it ends before
};

VariableFiles::VariableFiles(const EnsightMesh& mesh_of_run, ValuePlace place_of_values,
                             std::int32_t values, ExportSteps& steps_of_run)
    : mesh(mesh_of_run), place(place_of_values), value_count(values), steps(steps_of_run) {}

VariableFiles::~VariableFiles() = default;

void VariableFiles::begin_dataset(const std::string& first_line, bool is_of_vectors) {
  description = first_line;
  if (is_vector != is_of_vectors) spare.clear();
  is_vector = is_of_vectors;
  room = most_ahead();
}

// One more than there are threads: while the main thread writes one, too, a helper finds another.
std::size_t VariableFiles::most_ahead() const {
  if (!steps.are_ahead()) return 0;
  const std::int64_t fitting = bytes_ahead / memory_of_file(mesh, value_count, is_vector);
  const std::int64_t most = std::min<std::int64_t>(WORK_CREW().threads() + 1, fitting);
  return most > 1 ? static_cast<std::size_t>(most) : 0;
}

RES_TYPE& VariableFiles::next_record() {
  while (!files.empty() && (files.size() >= room || !files.front()->file.is_under_way())) {
    take_first_back();
  }
  steps.tell_what_is_written();
  if (!next) next = spare_record();
  return *next;
}

std::unique_ptr<RES_TYPE> VariableFiles::spare_record() {
  if (spare.empty()) {
    auto record = std::make_unique<RES_TYPE>();
    SIZE_RECORD(*record, value_count, mesh.element_count, is_vector);
    return record;
  }
  std::unique_ptr<RES_TYPE> record = std::move(spare.back());
  spare.pop_back();
  return record;
}

// The output time of the file is no longer used; the file may wait for its turn to be told.
void VariableFiles::take_first_back() {
  File& first = *files.front();
  first.file.finish();
  if (first.record->is_vector == is_vector) spare.push_back(std::move(first.record));
  files.pop_front();
}

void VariableFiles::write(const std::string& file_name) {
  if (room == 0) steps.tell_all();
  steps.say("Opening outfile: " + file_name);
  const auto file = std::make_shared<File>(file_name);
  file->record = std::move(next);
  files.push_back(file);
  const auto write = [&own = *file, &of_mesh = mesh, at = place, line = description] {
    own.write(of_mesh, at, line);
  };
  const auto tell = [file, file_name, write] {
    file->file.take_turn();
    if (!file->file.is_ahead()) write();
    file->file.complete();
    NOTE_TIME_WRITTEN();
    if (WRITTEN_VALUES().are_wanted) WRITTEN_VALUES().take(file->values);
    SAY("Closing outfile: " + file_name);
  };
  if (room > 0) {
    file->file.write_ahead(write);
    steps.then(tell, {file, &file->file});
  } else {
    steps.then(tell);
  }
}

}  // namespace quillet
