#include "dat/dat_source.h"

#include <cmath>

#include "dat/dat_datasets.h"
#include "dat/dat_extreme_scan.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/run_tally.h"

namespace quillet {

void DatSource::read_header() {
  SAY("Reading Header for: " + name());
  reader.read_header();
  SAY("Number Cells: " + AINTEGER(reader.header().cell_count));
  SAY("Number Nodes: " + AINTEGER(reader.header().node_count));
  SAY("Data Description: " + reader.header().name);
  reader.check_counts();
}

ResultShape DatSource::shape() const {
  const DatHeader& header = reader.header();
  return {header.node_count, header.cell_count, header.is_vector};
}

void DatSource::read_next(RES_TYPE& record) {
  if (reader.at_end()) return;
  SAY("Call ReadDatFile.");
  reader.load(READ_TIME_STEP(reader), record);
  NOTE_TIME_READ();
  SAY("Done.");
  note_end(record);
}

void DatSource::read_values(RES_TYPE& record) {
  if (reader.at_end()) return;
  reader.load(READ_TIME_STEP(reader), record);
  note_end(record);
}

void DatSource::note_end(RES_TYPE& record) const {
  record.end_of_file = reader.at_end();
  if (record.end_of_file) SAY("End of .dat file.");
}

void DatSource::read_at_time(float time, float tolerance, RES_TYPE& record) {
  read_header();
  while (!reader.at_end()) {
    const DatStep step = READ_TIME_STEP(reader);
    NOTE_TIME_PASSED();
    if (tolerance > std::fabs(step.time - time)) {
      reader.load(step, record);
      SAY("...Found time " + AREAL(time) + " in dat file.");
      return;
    }
  }
  FAIL_RUN("ERROR - Could not find specified timestep in .dat file.");
}

void DatSource::read_extreme(Extreme extreme, bool ignore_stored, RES_TYPE& step,
                             FileExtreme& file) {
  SCAN_FOR_EXTREME(reader, extreme, ignore_stored, step, file);
}

std::vector<std::unique_ptr<ResultDataset>> DatSource::datasets() {
  return LIST_DAT_DATASETS(reader);
}

void DatSource::close() {
  SAY("Closing .dat file: " + name());
  reader.close();
}

}  // namespace quillet
