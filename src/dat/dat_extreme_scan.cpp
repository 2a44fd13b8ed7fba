#include "dat/dat_extreme_scan.h"

#include <cmath>
#include <optional>
#include <string>
#include <string_view>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/run_tally.h"
#include "support/text.h"

namespace quillet {
namespace {

struct ScanTexts {
  std::string_view start;
  std::string_view compared;
  std::string_view passed_over;
  std::string_view stored_used;
  std::string_view stored_ignored;
};

constexpr ScanTexts maximum_texts{
    "Extracting maximums from all timesteps in .dat file", "Processing",
    "Ignoring maximum values as -ignore_MM specified.",
    "File has maximums stored (time = 99,999) using these values and ignoring all other timesteps.",
    "Ignoring maximum values as -ignore_MM has been specified."};

constexpr ScanTexts minimum_texts{
    "Extracting minimums from all timesteps in .dat file", "Processing.",
    "Ignoring minimum values as -ignore_MM specified.",
    "File has minimums stored (time = 99,999) using these values and ignoring all other timesteps.",
    "Ignoring minimum values as -ignore_MM has been specified."};

// Two widths stand in the scan: the narrow one for a stored step on the way, the wide one for the
// last step.
bool is_stored(float time) {
  return std::fabs(time - stored_maximum_time) < 0.01F;
}
bool is_stored_on_the_way(float time) {
  return std::fabs(time - stored_maximum_time) < 0.001F;
}
bool is_when_stored(float time) {
  return !(std::fabs(time - stored_when_time) > 0.01F);
}

// Whether the scan will end at stored values: then nothing else needs to be read. Looks at the
// heads only; a file that is cut short is left to the scan to report.
bool ends_at_stored_values(DatReader& reader) {
  const DatReader::Place start = reader.place();
  std::optional<DatStep> step;
  do {
    step = reader.try_advance();
  } while (step && !reader.at_end() && !is_when_stored(step->time));
  reader.return_to(start);
  return step && is_stored(step->time);
}

}  // namespace

DatStep READ_TIME_STEP(DatReader& reader) {
  SAY("Reading data for time " + AREALD(reader.next_time(), 3));
  const DatStep step = reader.advance();
  SAY("Done.");
  return step;
}

void SCAN_FOR_EXTREME(DatReader& reader, Extreme extreme, bool ignore_stored, RES_TYPE& step,
                      FileExtreme& file) {
  const ScanTexts& texts = extreme == Extreme::maximum ? maximum_texts : minimum_texts;
  SAY(texts.start);
  if (reader.at_end()) {
    SAY("WARNING - No output times in " + QUOTED(reader.name()));
    SAY("Finished processing file.");
    return;
  }

  const bool takes_stored = !ignore_stored && ends_at_stored_values(reader);
  DatStep current = READ_TIME_STEP(reader);
  while (!reader.at_end() && !is_when_stored(current.time)) {
    if (IS_MARKER_MAP(current.time)) {
      SAY("Skipping marker time, time found: " + AREAL(current.time));
    } else if (ignore_stored && is_stored_on_the_way(current.time)) {
      SAY(texts.passed_over);
    } else {
      SAY(texts.compared);
      if (!takes_stored) {
        reader.load(current, step);
        FOLD_OUTPUT_TIME(extreme, step, file);
      }
    }
    current = READ_TIME_STEP(reader);
    NOTE_TIME_READ();
  }

  if (takes_stored) {
    SAY(texts.stored_used);
    reader.load(current, file.record);
    ADOPT_STORED_EXTREME(current.time, file);
  } else if (is_stored(current.time)) {
    SAY(texts.stored_ignored);
  } else {
    SAY("WARNING - Last output time is not compared: " + AREAL(current.time));
  }
  SAY("Finished processing file.");
}

}  // namespace quillet
