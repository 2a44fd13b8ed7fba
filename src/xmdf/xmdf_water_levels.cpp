#include "xmdf/xmdf_water_levels.h"

#include <cmath>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"
#include "xmdf/xmdf_folders.h"
#include "xmdf/xmdf_name_search.h"
#include "xmdf/xmdf_values.h"

namespace quillet {

void XmdfWaterLevels::open(const ResultShape& data) {
  FindWaterLevel();
  SIZE_RECORD(step, data.node_count, data.cell_count.value_or(0), false);
}

void XmdfWaterLevels::read_at_time(float time, float time_tolerance, const RES_TYPE&) {
  ReadWaterLevel(time, time_tolerance);
}

void XmdfWaterLevels::FindWaterLevel() {
  SAY("Searching for water level datasets in " + header.file_name);
  const XmdfNameSearch search(header, "Water Level");
  for (std::int32_t position = 1; position <= header.scalars.count; ++position) {
    if (!search.finds(header.scalars, static_cast<std::size_t>(position) - 1)) continue;
    const std::string& path = header.scalars.path(position);
    if (FIND_XMDF_FOLDER(path, DatasetKind::maximum) != std::string::npos) {
      CHOOSE_XMDF_DATASET(maximums, position, path);
    } else if (FIND_XMDF_FOLDER(path, DatasetKind::series) != std::string::npos) {
      CHOOSE_XMDF_DATASET(temporal, position, path);
    }
  }
  if (maximums == 0) {
    SAY("Warning - No maximum water level dataset found for file: " + header.file_name);
  }
  if (temporal == 0) {
    SAY("Warning - No temporal water level dataset found for file: " + header.file_name);
  }
  if (maximums != 0 || temporal != 0) return;
  SAY_APART("ERROR - Required water level data could not be found in " + header.file_name);
  SAY("To supress this, specify the input flag: \"-nowetdry\"");
  EXITS();
}

// Within the tolerance on purpose: the general time search takes 99999 exactly.
void XmdfWaterLevels::ReadWaterLevel(float requestTime, float timeTolerance) {
  const auto asks_for = [&](float time) { return std::fabs(requestTime - time) < timeTolerance; };
  if (asks_for(stored_maximum_time)) {
    SAY("Using /Maximums/ folder.");
    open_dataset(maximums);
    read_output(1);
  } else if (asks_for(stored_minimum_time)) {
    FAIL_RUN("ERROR - Minimums data not supported for difference.");
  } else if (asks_for(stored_when_time)) {
    FAIL_RUN("ERROR - Times data not supported for difference.");
  } else {
    SAY("Using /Temporal/ folder.");
    open_dataset(temporal);
    read_output(NEAREST_XMDF_TIME(header.file_name, reader.times(), requestTime, timeTolerance));
  }
}

// The dataset stays open from one output time to the next.
void XmdfWaterLevels::open_dataset(std::int32_t position) {
  if (position == 0) FAIL_NOTHING_SELECTED(header);
  const std::string& path = header.scalars.path(position);
  if (!reader.is_open() || reader.path() != path) reader.open(path, false);
}

void XmdfWaterLevels::read_output(std::int32_t output) {
  SAY("Getting data from: " + header.file_name);
  SAY("Getting data from group: " + reader.path());
  SAY("Opening Group.");
  SAY("Reading scalar data at timestep " + AINTEGER(output));
  reader.read_values(output, "data", step);
  SAY("Processing final timestep... closing group");
  SAY("Finished getting water level data");
}

}  // namespace quillet
