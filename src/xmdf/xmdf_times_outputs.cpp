#include "xmdf/xmdf_times_outputs.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"
#include "xmdf/xmdf_folders.h"

namespace quillet {
namespace {

constexpr std::size_t most_times_outputs = 100;
constexpr std::size_t most_peak_outputs = 10;

// The digits and points of a name from the given column (from 1) on, read as one number.
std::optional<float> depth_in_name(std::string_view name, std::size_t column) {
  constexpr std::size_t longest = 20;
  std::string digits;
  for (const char c : name.substr(std::min(column - 1, name.size()))) {
    const bool belongs = (c >= '0' && c <= '9') || c == '.';
    if (belongs && digits.size() < longest) digits += c;
  }
  return READ_REAL(digits);
}

void add_with_depth(std::vector<XmdfTimesOutput>& outputs, std::int32_t path,
                    std::string_view dataset, std::size_t depth_column, const std::string& kind) {
  if (outputs.size() == most_times_outputs) {
    FAIL_RUN("ERROR - Exceeded maximum number of " + kind + " outputs, limit is 100.");
  }
  const auto depth = depth_in_name(TRIMF(dataset), depth_column);
  if (!depth) SAY("WARNING - Extracting cutoff depth from " + std::string(dataset));
  outputs.push_back({path, depth.value_or(0.0F)});
}

void add_peak(XmdfDatasetList& datasets, std::int32_t path, PeakKind kind) {
  if (datasets.peak_outputs.size() == most_peak_outputs) {
    FAIL_RUN("ERROR - Exceeded maximum number of peak time outputs, limit is 10.");
  }
  datasets.peak_outputs.push_back({path, kind});
}

void classify(XmdfDatasetList& datasets, std::int32_t path, const std::string& dataset) {
  constexpr std::size_t column_after_first = 22;     // "Time of First Depth > 0.1"
  constexpr std::size_t column_after_duration = 16;  // "Duration Above 0.3m"
  if (FLAGEXISTS(dataset, "Time of First")) {
    add_with_depth(datasets.time_outputs, path, dataset, column_after_first, "time");
  } else if (FLAGEXISTS(dataset, "Duration Above")) {
    add_with_depth(datasets.duration_outputs, path, dataset, column_after_duration, "duration");
  } else if (FLAGEXISTS(dataset, "Time of Peak h")) {
    add_peak(datasets, path, PeakKind::level);
  } else if (FLAGEXISTS(dataset, "Time of Peak V")) {
    add_peak(datasets, path, PeakKind::velocity);
  } else {
    SAY("WARNING - Unable to determine /Time/ output type.");
  }
}

}  // namespace

void CLASSIFY_TIMES_OUTPUTS(XmdfDatasetList& datasets) {
  std::int32_t position = 0;
  for (const XmdfPath& path : datasets.split_paths) {
    ++position;
    if (KIND_OF_XMDF_FOLDER(path.folder) == DatasetKind::special_times)
      classify(datasets, position, path.dataset);
  }
}

}  // namespace quillet
