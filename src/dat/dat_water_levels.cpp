#include "dat/dat_water_levels.h"

#include <cmath>

#include "results/time_pairing.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {

void DatWaterLevels::open(const ResultShape& data) {
  source.emplace(file_name);
  source->read_header();
  const ResultShape shape = source->shape();
  if (!SAME_COUNTS(shape, data)) {
    SAY("ERROR - Number nodes and/or cells in " + file_name +
        " not the same as in primary .dat file.");
    END_WITH_PAUSE();
  }
  SIZE_RECORD(step, shape.node_count, shape.cell_count.value_or(0), shape.is_vector);
}

void DatWaterLevels::warn_of_other_time(const RES_TYPE& data) const {
  if (TIMES_MATCH(step.time, data.time)) return;
  SAY("WARNING - Water level time differs from data time: " + AREAL(step.time) + " " +
      AREAL(data.time));
}

void DatWaterLevels::read_next(const RES_TYPE& data) {
  source->read_values(step);
  warn_of_other_time(data);
}

void DatWaterLevels::read_at_time(float time, float tolerance, const RES_TYPE& data) {
  source->read_at_time(time, tolerance, step);
  warn_of_other_time(data);
}

}  // namespace quillet
