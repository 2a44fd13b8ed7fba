#include "xmdf/xmdf_values.h"

#include <cmath>
#include <limits>
#include <string_view>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

// A dataset that holds times of peak has one output, at time 0, and no maximum of its own.
bool asks_for_times_folder(float request) {
  return std::fabs(request - stored_when_time) <= 0.001F;
}

XmdfOutput stored_output(std::int32_t dataset) {
  return {dataset, dataset == 0 ? 0 : 1};
}

// From 0; 0 when there are none.
std::size_t nearest_time(const std::vector<double>& times, float request) {
  std::size_t nearest = 0;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < times.size(); ++i) {
    const double difference = std::fabs(times[i] - double{request});
    if (!(difference < least)) continue;  // a time that is no number is never nearest
    nearest = i;
    least = difference;
  }
  return nearest;
}

std::size_t near_time(const std::string& file_name, const std::vector<double>& times, float request,
                      float tolerance) {
  const std::size_t nearest = nearest_time(times, request);
  if (times.empty()) return nearest;
  const auto chosen = static_cast<float>(times[nearest]);
  const bool is_near = std::fabs(chosen - request) - tolerance <= 0;
  if (is_near) return nearest;
  FAIL_RUN(
      "ERROR - Closest time " + QUOTED(AREAL(chosen)) + " is not within time search tolerance",
      QUOTED(file_name) + ", asked for time " + AREAL(request) + ", tolerance " + AREAL(tolerance));
}

void tell_time(const std::vector<double>& times, std::int32_t time_index) {
  if (times.empty()) return;
  const double time = times[static_cast<std::size_t>(time_index) - 1];
  SAY("Found closest time: " + AREAL(static_cast<float>(time)));
}

void find_time(const XmdfFileHeader& header, float request, float tolerance) {
  SAY("Searching xmdf file: " + QUOTED(header.file_name));
  if (asks_for_times_folder(request)) {
    SAY("ERROR - Should not be here (extract vector for /times/)");
    return;
  }
  if (request == stored_maximum_time) SAY("Looking for data in /Maximums/ folder.");
  const XmdfOutput output = XMDF_OUTPUT_AT(header, request, tolerance);
  const bool is_stored = request == stored_maximum_time || request == stored_minimum_time;
  if (!is_stored) {
    tell_time(header.times, output.time_index);
  } else if (output.dataset != 0) {
    SAY("Found " + header.datasets().path(output.dataset));
  }
}

void close_group(XmdfDatasetReader& reader) {
  SAY("Closing Group");
  reader.close();
  SAY("Done");
}

void read_stored(const XmdfFileHeader& header, const std::string& what, std::int32_t position,
                 RES_TYPE& record) {
  const std::string& path = header.datasets().path(position);
  SAY("Getting " + what + " data from: " + header.file_name);
  SAY("Getting data from group: " + path);
  XmdfDatasetReader reader(header);
  reader.open(path, header.uses_vectors());
  reader.read(1, "maximums", record);
  close_group(reader);
}

}  // namespace

XmdfOutput XMDF_OUTPUT_AT(const XmdfFileHeader& header, float time, float tolerance) {
  const XmdfDatasetList& datasets = header.datasets();
  // Exact on purpose: the search for water levels is the one with a tolerance.
  if (time == stored_maximum_time) return stored_output(datasets.maximums);
  if (time == stored_minimum_time) return stored_output(datasets.minimums);
  if (asks_for_times_folder(time)) return {};
  const std::size_t nearest = near_time(header.file_name, header.times, time, tolerance);
  return {datasets.temporal, static_cast<std::int32_t>(nearest) + 1};
}

void FindXmdfTime(const std::vector<XmdfFileHeader>& files, float requestTime, float tolerance) {
  SAY("Searching XMDF files for specified output time: " + AREAL(requestTime));
  for (const XmdfFileHeader& header : files) find_time(header, requestTime, tolerance);
}

std::int32_t NEAREST_XMDF_TIME(const std::string& fileName, const std::vector<double>& times,
                               float requestTime, float tolerance) {
  const std::size_t nearest = near_time(fileName, times, requestTime, tolerance);
  const auto time_index = static_cast<std::int32_t>(nearest) + 1;
  tell_time(times, time_index);
  return time_index;
}

void ReadXmdfData(XmdfDatasetReader& reader, XmdfOutput output, bool openGroup, bool closeGroup,
                  RES_TYPE& record) {
  const XmdfFileHeader& header = reader.file();
  const bool is_vector = header.uses_vectors();
  if (output.dataset == 0 || output.time_index == 0) {
    FAIL_NOTHING_SELECTED(header);
  }
  if (openGroup) {
    const std::string& path = header.datasets().path(output.dataset);
    SAY("Getting data from: " + header.file_name);
    SAY("Getting data from group: " + path);
    SAY("Opening Group.");
    reader.open(path, is_vector);
    SAY("Done.");
  }
  SAY(std::string("Reading ") + (is_vector ? "vector" : "scalar") + " data at timestep " +
      AINTEGER(output.time_index));
  reader.read(output.time_index, "data", record);
  if (closeGroup) {
    SAY("Processing final timestep... closing group");
    reader.close();
    SAY("Done");
    SAY("Finished getting data");
  }
}

void ReadXmdfMaximum(const XmdfFileHeader& header, RES_TYPE& record) {
  read_stored(header, "maximum", header.datasets().maximums, record);
}

void ReadXmdfMinimum(const XmdfFileHeader& header, RES_TYPE& record) {
  read_stored(header, "minimum", header.datasets().minimums, record);
}

void ReadXmdfSingleTime(const XmdfFileHeader& header, RES_TYPE& record) {
  const XmdfDatasetList& datasets = header.datasets();
  XmdfDatasetReader reader(header);
  reader.open(datasets.path(datasets.selected), header.uses_vectors());
  if (reader.times().size() > 1) {
    SAY_APART("ERROR - Multiple output times exits, expecting 1.");
    SAY("Contact " + std::string(support_email));
    EXITS();
  }
  reader.read(1, "data", record);
  close_group(reader);
}

}  // namespace quillet
