#include "dat/dat_source.h"

#include <cmath>

#include "dat/dat_datasets.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {

void READ_DAT_HEADER(DatReader& reader) {
  SAY("Reading Header for: " + reader.name());
  reader.read_header();
  SAY("Number Cells: " + AINTEGER(reader.header().cell_count));
  SAY("Number Nodes: " + AINTEGER(reader.header().node_count));
  SAY("Data Description: " + reader.header().name);
  reader.check_counts();
}

void WARN_OF_UNREAD_DATA(const DatReader& reader) {
  if (!reader.holds_more()) return;
  SAY("WARNING - Data after the last output time is not read: " + QUOTED(reader.name()));
}

ResultShape DatSource::shape() const {
  const DatHeader& header = reader.header();
  return {header.node_count, header.cell_count, header.is_vector};
}

// Moves past the output time that follows and says so, as every reading of one does.
DatStep DatSource::read_time_step() {
  SAY("Reading data for time " + AREALD(reader.next_time(), 3));
  const DatStep step = reader.advance();
  NOTE_TIMES_PASSED();
  SAY("Done.");
  return step;
}

void DatSource::read_next(RES_TYPE& record) {
  if (reader.at_end()) return;
  SAY("Call ReadDatFile.");
  reader.load(read_time_step(), record);
  NOTE_TIME_READ(BYTES_OF(SHAPE_OF(record)));
  SAY("Done.");
  record.end_of_file = reader.at_end();
  if (!record.end_of_file) return;
  SAY("End of .dat file.");
  WARN_OF_UNREAD_DATA(reader);
}

void DatSource::pass_next() {
  reader.advance();
  NOTE_TIMES_PASSED();
  if (reader.at_end()) WARN_OF_UNREAD_DATA(reader);
}

void DatSource::read_at_time(float time, float tolerance, RES_TYPE& record) {
  read_header();
  while (!reader.at_end()) {
    const DatStep step = read_time_step();
    if (tolerance > std::fabs(step.time - time)) {
      reader.load(step, record);
      NOTE_TIME_READ(BYTES_OF(SHAPE_OF(record)));
      NOTE_TIMES_PASSED(reader.likely_time_count());  // those behind it are not looked at
      SAY("...Found time " + AREAL(time) + " in dat file.");
      return;
    }
  }
  FAIL_RUN("ERROR - Could not find specified timestep in .dat file.",
           QUOTED(name()) + ", asked for time " + AREAL(time) + ", tolerance " + AREAL(tolerance));
}

void DatSource::begin_scan(std::string_view sought) {
  SAY("Extracting " + std::string(sought) + " from all timesteps in .dat file");
}

// Looks at the heads only; a file that is cut short is left to the walk to report.
std::vector<float> DatSource::times_ahead() {
  const DatReader::Place start = reader.place();
  std::vector<float> times;
  while (!reader.at_end()) {
    const auto step = reader.try_advance();
    if (!step) break;
    times.push_back(step->time);
  }
  reader.return_to(start);
  return times;
}

float DatSource::scan_next() {
  scanned = read_time_step();
  return scanned.time;
}

void DatSource::read_scanned(std::int32_t cell_count, OutputPieces& pieces) {
  reader.load_in_pieces(scanned, cell_count, pieces);
  NOTE_TIME_READ(BYTES_OF(shape()));
}

void DatSource::end_scan() {
  SAY("Finished processing file.");
  if (reader.at_end()) WARN_OF_UNREAD_DATA(reader);
}

std::vector<std::unique_ptr<ResultDataset>> DatSource::datasets() {
  auto datasets = LIST_DAT_DATASETS(reader);
  WARN_OF_UNREAD_DATA(reader);
  return datasets;
}

void DatSource::close() {
  SAY("Closing .dat file: " + name());
  reader.close();
}

}  // namespace quillet
