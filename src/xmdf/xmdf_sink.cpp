#include "xmdf/xmdf_sink.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "results/written_values.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/interleave.h"
#include "support/numbers.h"
#include "support/run_tally.h"
#include "support/text.h"
#include "support/vector_magnitude.h"
#include "xmdf/xmdf_folders.h"

namespace quillet {
namespace {

// A separator inside a name would make a further group.
std::string without_separators(std::string name) {
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '/' || c == '\\'; }, '_');
  return name;
}

// Vectors have their magnitudes beside them; each dataset has its activity.
std::int64_t bytes_per_time(const ResultShape& shape) {
  constexpr std::int64_t value = sizeof(float);
  const std::int64_t activity = shape.cell_count.value_or(0);
  const std::int64_t scalar = shape.node_count * value + activity;
  return shape.is_vector ? scalar + shape.node_count * 2 * value + activity : scalar;
}

}  // namespace

std::string XMDF_MAGNITUDE_NAME(const std::string& vector_name) {
  constexpr std::string_view prefix = "Vector";
  if (vector_name.starts_with(prefix) && vector_name.size() > prefix.size() + 1) {
    return vector_name.substr(prefix.size() + 1);
  }
  return vector_name + "_mag";
}

XmdfSink::XmdfSink(std::string output_name, const DatasetNames& dataset_names)
    : file_name(std::move(output_name)), names(dataset_names) {
  names.group = without_separators(names.group);
  SAY("Output XMDF File: " + file_name);
  std::string reason = part.create(file_name);
  if (reason.empty()) reason = XF_CREATE_FILE(part.name(), file).reason;
  if (reason.empty()) return;
  if (part.is_open()) part.remove();
  FAIL_RUN("ERROR - Creating file [XF_CREATE_FILE] " + file_name, reason);
}

// What was written stays under its temporary name; a file without a dataset is removed.
XmdfSink::~XmdfSink() {
  scalar_dataset.reset();
  vector_dataset.reset();
  folder.reset();
  file.reset();
  if (part.is_open() && !has_datasets) part.remove();
}

void XmdfSink::prepare(const ResultShape& shape, std::int64_t likely_time_count) {
  expected = shape;
  expected_times = likely_time_count;
}

void XmdfSink::start_dataset(DatasetKind kind, const std::string& dataset, const ResultShape& shape,
                             std::int64_t time_count) {
  close_datasets();
  if (!folder || kind != names.kind) {
    check(XF_CLOSE_GROUP(folder), "ERROR - Closing group [XF_CLOSE_GROUP]");
    names.kind = kind;
    create_folder();
  }
  create_datasets(dataset, shape, time_count);
}

void XmdfSink::create_folder() {
  const std::string path = names.group + "/" + std::string(XMDF_FOLDER(names.kind));
  SAY("Creating Folder: " + path);
  check(XF_CREATE_GENERIC_GROUP(file, path, folder),
        "ERROR - Creating group [XF_CREATE_GENERIC_GROUP] ");
}

void XmdfSink::create_datasets(const std::string& dataset, const ResultShape& shape,
                               std::int64_t time_count) {
  has_datasets = true;
  const std::string own_name = without_separators(dataset.empty() ? FILENAME(file_name) : dataset);
  XfDatasetOptions options;
  options.expected_values = shape.node_count;
  options.expected_times = static_cast<std::int32_t>(std::min<std::int64_t>(time_count, INT32_MAX));
  XF_EXPECT_SIZE(file, time_count * bytes_per_time(shape));
  std::string scalar_name = own_name;
  if (shape.is_vector) {
    SAY("Creating vector dataset: " + own_name);
    check(XF_CREATE_VECTOR_DATASET(folder, own_name, options, vector_dataset),
          "ERROR - Creating group [XF_CREATE_VECTOR_DATASET]");
    scalar_name = XMDF_MAGNITUDE_NAME(own_name);
  }
  SAY("Creating scalar dataset: " + scalar_name);
  // The message names the vector call for the magnitudes too: see docs/compatibility.md.
  check(XF_CREATE_SCALAR_DATASET(folder, scalar_name, options, scalar_dataset),
        std::string("ERROR - Creating group [XF_CREATE_") +
            (shape.is_vector ? "VECTOR" : "SCALAR") + "_DATASET]");
  SAY("Done.");
  SAY("Done");
}

void XmdfSink::write_time_at(double hours, const RES_TYPE& record) {
  if (!has_datasets) start_dataset(names.kind, names.dataset, SHAPE_OF(record), expected_times);
  if (write(hours, record)) NOTE_WRITTEN(record.time, record);
}

void XmdfSink::write_map(const ResultMap& map, const RES_TYPE& record) {
  const std::string dataset(map.dataset_name.empty() ? names.dataset : map.dataset_name);
  start_dataset(names.kind, dataset, SHAPE_OF(record), 1);
  if (!write(map.dataset_time, record)) return;
  if (map.dataset_name.empty()) {
    NOTE_WRITTEN(map.dataset_time, record);
  } else {
    NOTE_TIME_WRITTEN();
  }
}

bool XmdfSink::write(double time, const RES_TYPE& record) {
  // A map of sources or times in a vector .dat file holds no vectors and no magnitudes.
  if (vector_dataset && !record.is_vector) {
    SAY("WARNING - No vectors at time " + AREAL(static_cast<float>(time)) + ", not written.");
    return false;
  }
  if (record.is_vector && !vector_dataset)
    FAIL_WRITING(file_name, VECTORS_AFTER_SCALARS(static_cast<float>(time)));
  const auto count = static_cast<std::size_t>(record.node_count);
  if (record.is_vector) {
    const XfRange range = prepare_vectors(record);
    const float* const vectors = record.holds_pairs ? record.nd.x.data() : pairs.data();
    XfStatus status = XF_WRITE_VECTOR_TIMESTEP(vector_dataset, time, {vectors, 2 * count}, range);
    finish_output(vector_dataset, status, record, "VECTOR");
    write_scalars(time, magnitude.data(), range, record);
  } else {
    const float* const values = record.nd.x.data();
    write_scalars(time, values, XF_RANGE_OF(values, count), record);
  }
  return true;
}

// Joins the components where they stand apart, and takes the magnitudes and their range, in pieces
// that stay in the processor's cache.
XfRange XmdfSink::prepare_vectors(const RES_TYPE& record) {
  constexpr std::int64_t piece = 4096;
  const std::int64_t count = record.node_count;
  if (std::ssize(magnitude) != count) SIZE_ARRAY(magnitude, count);
  if (!record.holds_pairs && std::ssize(pairs) != 2 * count) SIZE_ARRAY(pairs, 2 * count);
  const ND_RES_TYPE& nodes = record.nd;
  XfRangeFinder finder;
  for (std::int64_t first = 0; first < count; first += piece) {
    const std::int64_t size = std::min(piece, count - first);
    if (!record.holds_pairs) {
      JOIN_COMPONENTS(&nodes.x[first], &nodes.y[first], size, &pairs[2 * first]);
    }
    const float* const vectors = record.holds_pairs ? nodes.x.data() : pairs.data();
    PAIR_MAGNITUDES(vectors + 2 * first, size, &magnitude[first]);
    finder.include(&magnitude[first], static_cast<std::size_t>(size));
  }
  return finder.range();
}

void XmdfSink::write_scalars(double time, const float* values, const XfRange& range,
                             const RES_TYPE& record) {
  const auto count = static_cast<std::size_t>(record.node_count);
  const XfStatus status = XF_WRITE_SCALAR_TIMESTEP(scalar_dataset, time, {values, count}, range);
  finish_output(scalar_dataset, status, record, "SCALAR");
}

// Writes the activity after the values.
void XmdfSink::finish_output(const XfDatasetWriter& dataset, XfStatus status,
                             const RES_TYPE& record, const char* kind) {
  if (status.ok()) status = XF_WRITE_ACTIVITY_TIMESTEP(dataset, record.cell.status);
  check(status, std::string("ERROR - Writing data [XF_WRITE_") + kind + "_TIMESTEP] ");
  SAY("Done.");
}

void XmdfSink::close_datasets() {
  check(XF_CLOSE_GROUP(scalar_dataset), "ERROR - Closing group [XF_CLOSE_GROUP]");
  check(XF_CLOSE_GROUP(vector_dataset), "ERROR - Closing group [XF_CLOSE_GROUP]");
}

void XmdfSink::close() {
  if (!has_datasets) start_dataset(names.kind, names.dataset, expected, 0);
  SAY("Closing XMDF File: " + file_name);
  close_datasets();
  check(XF_CLOSE_GROUP(folder), "ERROR - Closing group [XF_CLOSE_GROUP]");
  check(XF_CLOSE_FILE(file), "ERROR - Closing file [XF_CLOSE_FILE]");
  const std::string reason = part.complete();
  if (!reason.empty()) FAIL_WRITING(file_name, reason);
  SAY("Done.");
}

void XmdfSink::check(const XfStatus& status, const std::string& message) {
  if (status.ok()) return;
  if (status.kind == XfStatus::Kind::no_memory) FAIL_ALLOCATION();
  FAIL_RUN(message + (message.ends_with(' ') ? file_name : ""),
           QUOTED(file_name) + ": " + status.reason);
}

}  // namespace quillet
