#include "ensight/variable_files.h"

#include <algorithm>
#include <new>
#include <utility>

#include "support/output_unit.h"
#include "support/system_files.h"
#include "support/work_crew.h"

namespace quillet {
namespace {

// Less text than this takes as long to write as a thread to start.
constexpr std::int64_t least_shared = std::int64_t{8} << 20;

// Output times that wait for their turn take this much memory at most.
constexpr std::int64_t bytes_ahead = std::int64_t{256} << 20;

// With the nodes that are wet and the buffer.
std::int64_t memory_of_file(const EnsightMesh& mesh, std::int32_t value_count, bool is_vector) {
  const std::int64_t values = std::int64_t{value_count} * (is_vector ? 2 : 1);
  return values * 4 + mesh.element_count + mesh.node_count +
         static_cast<std::int64_t>(OutputUnit::buffer_size);
}

}  // namespace

struct VariableFiles::File {
  File() = default;
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    job.take_back();
    const bool is_of_no_run = out.has_value() && !is_told;
    out.reset();
    if (is_of_no_run) REMOVE_FILE(name);
  }

  void tell_opening() {
    if (!std::exchange(is_told, true)) SAY("Opening outfile: " + name);
  }

  std::string name;
  RES_TYPE record;
  std::optional<OutputUnit> out;
  bool is_told = false;  // that it is opened
  bool is_handed_out = false;
  bool has_memory = true;
  CrewJob job;  // last: it ends before what it works on
};

VariableFiles::VariableFiles(const EnsightMesh& mesh_of_run, ValuePlace place_of_values,
                             const std::string& first_line, std::int32_t values, bool is_of_vectors,
                             std::int64_t file_count)
    : mesh(mesh_of_run),
      place(place_of_values),
      description(first_line),
      value_count(values),
      is_vector(is_of_vectors),
      room(static_cast<std::size_t>(most_ahead(file_count))) {}

VariableFiles::~VariableFiles() = default;

// One more than there are threads: while the main thread writes one, too, a helper finds another.
std::int64_t VariableFiles::most_ahead(std::int64_t file_count) const {
  const std::int64_t text = file_count * VARIABLE_FILE_SIZE(mesh, place, is_vector);
  if (!WORK_CREW().has_helpers() || text < least_shared) return 0;
  const std::int64_t fitting = bytes_ahead / memory_of_file(mesh, value_count, is_vector);
  const std::int64_t most = std::min<std::int64_t>(WORK_CREW().threads() + 1, fitting);
  return most > 1 ? most : 0;
}

RES_TYPE& VariableFiles::next_record() {
  if (!next) {
    while (room > 0 && files.size() >= room) complete_first();
    if (spare.empty()) spare.push_back(std::make_unique<File>());
    next = std::move(spare.back());
    spare.pop_back();
    RES_TYPE& record = next->record;
    if (record.node_count == 0) {
      SIZE_RECORD(record, value_count, mesh.element_count, is_vector);
    }
    SIZE_STATUSES(record, mesh.element_count);
  }
  return next->record;
}

void VariableFiles::write(const std::string& file_name) {
  File& file = *next;
  files.push_back(std::move(next));
  file.name = file_name;
  file.is_told = file.is_handed_out = false;
  owed.emplace([this] { tell_all(); });
  file.out.emplace(file_name, OutputUnit::Replace::directly);
  file.out->expect_size(VARIABLE_FILE_SIZE(mesh, place, is_vector));
  if (room > 0) {
    hand_out(file);
  } else {
    fill(file);
    file.is_handed_out = true;
    complete_first();
  }
}

void VariableFiles::hand_out(File& file) {
  file.out->tell_failures_when_complete();
  file.job.start([this, &file] { fill(file); });
  file.is_handed_out = true;
  owed.emplace([this] { tell_all(); });
}

void VariableFiles::fill(File& file) const try {
  WRITE_VARIABLE_VALUES(mesh, place, file.record, description, *file.out);
} catch (const std::bad_alloc&) {
  file.has_memory = false;
}

// The lines of the first file are shown, so that it owes none while it is being completed.
void VariableFiles::complete_first() {
  owed.reset();
  File& file = *files.front();
  file.tell_opening();
  file.job.finish();
  if (!file.has_memory) FAIL_ALLOCATION();
  file.out->complete();
  NOTE_VARIABLE_WRITTEN(mesh, place, file.record);
  SAY("Closing outfile: " + file.name);
  file.out.reset();
  spare.push_back(std::move(files.front()));
  files.pop_front();
  if (!files.empty()) owed.emplace([this] { tell_all(); });
}

void VariableFiles::tell_all() {
  while (!files.empty() && files.front()->is_handed_out) complete_first();
  if (files.empty()) return;
  owed.reset();
  files.front()->tell_opening();
}

void VariableFiles::finish() {
  while (!files.empty()) complete_first();
}

}  // namespace quillet
