#include "xmdf/xmdf_source.h"

#include <algorithm>

#include "results/special_times.h"
#include "support/console.h"
#include "support/run_tally.h"
#include "support/text.h"
#include "xmdf/xmdf_datasets.h"
#include "xmdf/xmdf_values.h"

namespace quillet {

std::int64_t XmdfSource::likely_time_count() const {
  return static_cast<std::int64_t>(header.times.size());
}

// A file without a time series of the type has nothing to walk through; that is an error of the
// request, not an end.
bool XmdfSource::at_end() const {
  if (header.datasets().temporal == 0) FAIL_NOTHING_SELECTED(header);
  return outputs_passed >= header.times.size();
}

// Files exist whose 64-bit times were 32-bit reals before.
bool XmdfSource::has_short_times() const {
  return std::all_of(header.times.begin(), header.times.end(),
                     [](double time) { return time == static_cast<float>(time); });
}

void XmdfSource::read_next(RES_TYPE& record) {
  if (at_end()) return;
  const XmdfOutput output{header.datasets().temporal, static_cast<std::int32_t>(++outputs_passed)};
  const bool is_last = outputs_passed == header.times.size();
  ReadXmdfData(reader, output, !reader.is_open(), is_last, record);
  NOTE_TIME_READ(BYTES_OF(SHAPE_OF(record)));
  NOTE_TIMES_PASSED();
  record.end_of_file = is_last;
}

void XmdfSource::read_at_time(float time, float tolerance, RES_TYPE& record) {
  const XmdfOutput output = XMDF_OUTPUT_AT(header, time, tolerance);
  if (output.dataset == 0 && time == stored_maximum_time) {
    FAIL_RUN("ERROR - No stored maximum found in " + QUOTED(name()));
  }
  if (output.dataset == 0 && time == stored_minimum_time) {
    FAIL_RUN("ERROR - No stored minimum found in " + QUOTED(name()));
  }
  ReadXmdfData(reader, output, true, true, record);
  NOTE_TIME_READ(BYTES_OF(SHAPE_OF(record)));
  pass_rest();
}

void XmdfSource::pass_rest() {
  NOTE_TIMES_PASSED(static_cast<std::int64_t>(header.times.size() - outputs_passed));
}

bool XmdfSource::has_stored(Extreme extreme) const {
  const XmdfDatasetList& datasets = header.datasets();
  return (extreme == Extreme::maximum ? datasets.maximums : datasets.minimums) != 0;
}

void XmdfSource::read_stored(Extreme extreme, RES_TYPE& record) {
  (extreme == Extreme::maximum ? ReadXmdfMaximum : ReadXmdfMinimum)(header, record);
  NOTE_TIME_READ(BYTES_OF(SHAPE_OF(record)));
  pass_rest();
}

// A series without output times is not opened.
void XmdfSource::begin_scan(std::string_view sought) {
  if (at_end()) return;
  const XmdfDatasetList& datasets = header.datasets();
  const std::string& path = datasets.path(datasets.temporal);
  SAY("Extracting " + std::string(sought) + " from /Temporal/ folder in " + header.file_name);
  SAY("Opening data group: " + path);
  reader.open(path, header.uses_vectors());
}

std::vector<float> XmdfSource::times_ahead() {
  std::vector<float> times;
  for (std::size_t i = outputs_passed; i < header.times.size(); ++i) {
    times.push_back(static_cast<float>(header.times[i]));
  }
  return times;
}

float XmdfSource::scan_next() {
  NOTE_TIMES_PASSED();
  return static_cast<float>(header.times[outputs_passed++]);
}

void XmdfSource::read_scanned(std::int32_t cell_count, OutputPieces& pieces) {
  reader.read_in_pieces(static_cast<std::int32_t>(outputs_passed), "timestep", header.node_count,
                        cell_count, pieces);
  NOTE_TIME_READ(BYTES_OF(shape()));
}

void XmdfSource::end_scan() {
  if (!reader.is_open()) return;
  SAY("Closing Group");
  reader.close();
  SAY("Done");
}

std::vector<std::unique_ptr<ResultDataset>> XmdfSource::datasets() {
  return LIST_XMDF_DATASETS(reader);
}

void XmdfSource::close() {
  reader.abandon();
  CLOSE_XMDF_INPUT(header);
}

}  // namespace quillet
