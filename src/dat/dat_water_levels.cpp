#include "dat/dat_water_levels.h"

#include <cmath>

#include "results/time_pairing.h"
#include "support/console.h"
#include "support/numbers.h"

namespace quillet {

void DatWaterLevels::open(const RES_TYPE& shape) {
  source.emplace(file_name);
  source->read_header();
  if (source->node_count() != shape.node_count || source->cell_count() != shape.cell_count) {
    SAY("ERROR - Number nodes and/or cells in " + file_name +
        " not the same as in primary .dat file.");
    END_WITH_PAUSE();
  }
  SIZE_RECORD(step, source->node_count(), source->cell_count(), source->is_vector());
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
