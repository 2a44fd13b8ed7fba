#include "operations/extreme_scan.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

struct ScanTexts {
  std::string_view sought;
  std::string_view compared;
  std::string_view passed_over;
  std::string_view stored_used;
  std::string_view stored_ignored;
};

constexpr ScanTexts maximum_texts{
    "maximums", "Processing", "Ignoring maximum values as -ignore_MM specified.",
    "File has maximums stored (time = 99,999) using these values and ignoring all other timesteps.",
    "Ignoring maximum values as -ignore_MM has been specified."};

constexpr ScanTexts minimum_texts{
    "minimums", "Processing.", "Ignoring minimum values as -ignore_MM specified.",
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
// Made by this program: a file that holds such a map alone, kept or trimmed, has it for its
// maximum.
bool is_maximum_or_minimum(float time) {
  return time == maximum_marker_time || time == minimum_marker_time;
}
bool is_when_stored(float time) {
  return !(std::fabs(time - stored_when_time) > 0.01F);
}

// Folds an output time into the extreme, piece by piece.
class FoldedPieces : public OutputPieces {
 public:
  FoldedPieces(Extreme which, float output_time, FileExtreme& result)
      : extreme(which), time(output_time), file(result) {}

  void take_statuses(std::int64_t first_cell, std::span<const std::int8_t> statuses) override {
    const auto running = std::span(file.record.cell.status);
    FOLD_STATUSES(extreme, statuses, running.subspan(first_cell, statuses.size()));
  }
  void take_values(std::int64_t first_node, std::span<const float> values) override {
    FOLD_VALUES(extreme, time, first_node, values, file);
  }

 private:
  Extreme extreme;
  float time;
  FileExtreme& file;
};

// Keeps an output time as it is.
class KeptPieces : public OutputPieces {
 public:
  explicit KeptPieces(RES_TYPE& kept) : record(kept) {}

  void take_statuses(std::int64_t first_cell, std::span<const std::int8_t> statuses) override {
    std::copy(statuses.begin(), statuses.end(), record.cell.status.begin() + first_cell);
  }
  void take_values(std::int64_t first_node, std::span<const float> values) override {
    const std::int64_t first = record.is_vector ? 2 * first_node : first_node;
    std::copy(values.begin(), values.end(), record.nd.x.begin() + first);
  }

 private:
  RES_TYPE& record;
};

// Whether a scan will end at stored values: then nothing else needs to be read.
bool ends_at_stored_values(ResultSource& source) {
  const std::vector<float> times = source.times_ahead();
  const auto end = std::find_if(times.begin(), times.end(), is_when_stored);
  if (end != times.end()) return is_stored(*end);
  return !times.empty() && is_stored(times.back());
}

class Scan {
 public:
  Scan(Extreme which, bool ignores_stored, ResultSource& scanned, FileExtreme& result)
      : extreme(which),
        ignore_stored(ignores_stored),
        texts(which == Extreme::maximum ? maximum_texts : minimum_texts),
        source(scanned),
        file(result) {}

  void perform() {
    if (!ignore_stored && source.has_stored(extreme)) {
      source.read_stored(extreme, file.record);
      ADOPT_STORED_EXTREME(stored_maximum_time, file);
      return;
    }
    source.begin_scan(texts.sought);
    if (source.at_end()) {
      SAY("WARNING - No output times in " + QUOTED(source.name()));
    } else if (source.stored_extremes_end_walk()) {
      compare_all_but_last();
    } else {
      compare_all();
    }
    source.end_scan();
  }

 private:
  void compare_all() {
    while (!source.at_end()) {
      GO_ON_WITHOUT_LINE();
      const float time = source.scan_next();
      if (!pass_over_map(time)) fold(time);
    }
  }

  void compare_all_but_last() {
    const bool takes_stored = !ignore_stored && ends_at_stored_values(source);
    float time = source.scan_next();
    for (; !source.at_end() && !is_when_stored(time); time = source.scan_next()) {
      if (pass_over_map(time)) continue;
      if (ignore_stored && is_stored_on_the_way(time)) {
        SAY(texts.passed_over);
        continue;
      }
      SAY(texts.compared);
      if (!takes_stored) fold(time);
    }
    finish_at(time, takes_stored);
  }

  void finish_at(float time, bool takes_stored) {
    if (takes_stored) {
      SAY(texts.stored_used);
      KeptPieces pieces(file.record);
      source.read_scanned(file.record.cell_count, pieces);
      ADOPT_STORED_EXTREME(time, file);
    } else if (is_stored(time)) {
      SAY(texts.stored_ignored);
    } else if (is_maximum_or_minimum(time)) {
      SAY(texts.compared);
      fold(time);
    } else if (!IS_MARKER_MAP(time) && !is_when_stored(time) && time != stored_minimum_time) {
      SAY("WARNING - Last output time is not compared: " + AREAL(time));
    }
  }

  static bool pass_over_map(float time) {
    if (!IS_MARKER_MAP(time)) return false;
    SAY(std::string(marker_map_passed_over) + AREAL(time));
    return true;
  }

  void fold(float time) {
    FoldedPieces pieces(extreme, time, file);
    source.read_scanned(file.record.cell_count, pieces);
  }

  Extreme extreme;
  bool ignore_stored;
  const ScanTexts& texts;
  ResultSource& source;
  FileExtreme& file;
};

}  // namespace

void SCAN_FOR_EXTREME(Extreme extreme, bool ignore_stored, ResultSource& source,
                      FileExtreme& file) {
  Scan(extreme, ignore_stored, source, file).perform();
}

bool SCAN_READS_ALL_TIMES(Extreme extreme, bool ignore_stored, ResultSource& source) {
  if (ignore_stored) return true;
  return !source.has_stored(extreme) &&
         !(source.stored_extremes_end_walk() && ends_at_stored_values(source));
}

}  // namespace quillet
