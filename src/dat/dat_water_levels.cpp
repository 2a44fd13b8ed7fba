#include "dat/dat_water_levels.h"

#include <cmath>

#include "dat/dat_level_files.h"
#include "dat/dat_names.h"
#include "dat/dat_source.h"
#include "results/special_times.h"
#include "results/time_pairing.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

// Stored extremes under the time that engines give them, everything else under its own. In .dat
// files the minima of this program stand at 111111 too.
float meaning_of(float time, bool of_minima) {
  if (time == minimum_marker_time) return stored_minimum_time;
  if (time != maximum_marker_time) return time;
  return of_minima ? stored_minimum_time : stored_maximum_time;
}

// Times and sources of an extreme are wet where the extreme is.
float wanted_meaning(float time, bool of_minima) {
  if (std::fabs(time - stored_when_time) < 0.01F) return stored_maximum_time;
  return meaning_of(IS_MARKER_MAP(time) ? maximum_marker_time : time, of_minima);
}

}  // namespace

std::string DatWaterLevels::choose_file() const {
  const LevelFiles files = LEVEL_FILES(data_file);
  if (files.made_alike == files.original || FILE_EXISTS(files.made_alike)) return files.made_alike;
  if (files.of_extreme) {
    FAIL_RUN("ERROR - No water levels for " + QUOTED(data_file) + ": make " +
             QUOTED(files.made_alike) + " with the same operation, or use -nowetdry.");
  }
  if (!FILE_EXISTS(files.original)) return files.made_alike;
  SAY("WARNING - Water levels from " + QUOTED(files.original));
  return files.original;
}

void DatWaterLevels::open(const ResultShape& data) {
  reader.emplace(choose_file());
  READ_DAT_HEADER(*reader);
  const DatHeader& header = reader->header();
  const ResultShape levels{header.node_count, header.cell_count, header.is_vector};
  if (!SAME_COUNTS(levels, data)) {
    SAY("ERROR - Number nodes and/or cells in " + reader->name() +
        " not the same as in primary .dat file.");
    SAY_HELP("Found " + COUNTS_TEXT(levels) + ", expected " + COUNTS_TEXT(data) + " as in " +
             QUOTED(data_file));
    END_WITH_PAUSE();
  }
}

void DatWaterLevels::read_next(const RES_TYPE& data) {
  take(find(wanted_meaning(data.time, HOLDS_MINIMA(data_file)), time_pairing_tolerance));
}

// A wide tolerance must not pass by the level of the very time.
void DatWaterLevels::read_at_time(float, float tolerance, const RES_TYPE& data) {
  const float meaning = wanted_meaning(data.time, HOLDS_MINIMA(data_file));
  auto place = find(meaning, time_pairing_tolerance);
  if (!place) place = find(meaning, tolerance);
  take(place);
}

// Onward from the output time last read, then from the start of the file.
std::optional<std::size_t> DatWaterLevels::find(float meaning, float tolerance) {
  for (std::size_t place = next; walk_to(place); ++place) {
    if (is_at(place, meaning, tolerance)) return place;
  }
  for (std::size_t place = 0; place < next; ++place) {
    if (is_at(place, meaning, tolerance)) return place;
  }
  return std::nullopt;
}

bool DatWaterLevels::is_at(std::size_t place, float meaning, float tolerance) {
  const float time = meaning_of(steps[place].time, HOLDS_MINIMA(reader->name()));
  return std::fabs(time - meaning) <= tolerance;
}

// False when the file ends before.
bool DatWaterLevels::walk_to(std::size_t place) {
  if (place < steps.size()) return true;
  if (reader->at_end()) return false;
  steps.push_back(reader->advance());
  if (reader->at_end()) WARN_OF_UNREAD_DATA(*reader);
  return true;
}

void DatWaterLevels::take(std::optional<std::size_t> place) {
  has_levels = place.has_value();
  if (!place) return;
  SAY("Reading data for time " + AREALD(steps[*place].time, 3));
  SAY("Done.");
  next = *place + 1;
  if (next == steps.size() && reader->at_end()) SAY("End of .dat file.");
}

const float* DatWaterLevels::levels(const RES_TYPE& data, std::int64_t first_node,
                                    std::int64_t count) {
  if (!has_levels) {
    FAIL_RUN("ERROR - No water levels at time " + AREAL(data.time) + " in " +
             QUOTED(reader->name()) + ". Use -nowetdry to compare without the wet/dry test.");
  }
  piece.resize(static_cast<std::size_t>(count));
  reader->read_values(steps[next - 1], {first_node, count}, piece.data());
  return piece.data();
}

}  // namespace quillet
