#include "dat/dat_sink.h"

#include <utility>

#include "results/written_values.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/run_tally.h"

namespace quillet {
namespace {

const std::string& announced(const std::string& file_name) {
  SAY("Output .dat File: " + file_name);
  return file_name;
}

}  // namespace

DatSink::DatSink(std::string output_name, const DatasetNames& names)
    : file_name(std::move(output_name)),
      dataset_name(names.dataset.empty() ? file_name : names.dataset),
      writer(announced(file_name)) {}

void DatSink::prepare(const ResultShape& shape, std::int64_t likely_time_count) {
  expected = shape;
  writer.expect_times(likely_time_count, expected);
}

void DatSink::write_header(const ResultShape& shape) {
  SAY("Writing header inforamtion to .dat file: " + file_name);
  writer.write_header(FILENAME(dataset_name), shape);
  SAY("Done");
  has_header = true;
  header_says_vector = shape.is_vector;
}

void DatSink::write(float time, const RES_TYPE& record) {
  if (!has_header) write_header(SHAPE_OF(record));
  if (record.is_vector && !header_says_vector) FAIL_WRITING(file_name, VECTORS_AFTER_SCALARS(time));
  SAY("Writing output data to: " + file_name);
  writer.write_time(time, record);
  if (time < 0 && !std::exchange(warned_of_negative_time, true)) {
    SAY("WARNING - Negative times are written as 111111 in .dat files.");
  }
  SAY("Done.");
}

void DatSink::write_time_at(double, const RES_TYPE& record) {
  write(record.time, record);
  NOTE_WRITTEN(record.time, record);
}

void DatSink::write_map(const ResultMap& map, const RES_TYPE& record) {
  write(map.marker_time, record);
  if (map.dataset_name.empty()) {
    NOTE_WRITTEN(map.dataset_time, record);
  } else {
    NOTE_TIME_WRITTEN();
  }
  if (header_says_vector && !record.is_vector && !std::exchange(warned_of_maps, true)) {
    SAY("WARNING - Source and time maps in a vector .dat file cannot be read by other programs, "
        "use an .xmdf output.");
  }
}

void DatSink::close() {
  if (!has_header) write_header(expected);
  SAY("Writing END cards");
  SAY("Closing output file.");
  writer.close();
  SAY("Done");
}

}  // namespace quillet
