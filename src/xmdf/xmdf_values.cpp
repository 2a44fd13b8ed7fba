#include "xmdf/xmdf_values.h"

#include <cmath>
#include <limits>
#include <string_view>

#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"
#include "xmdf/xmdf_group_reader.h"

namespace quillet {
namespace {

void select_stored(XmdfFileHeader& header, std::int32_t position) {
  if (position == 0) return;
  XmdfDatasets& datasets = header.datasets();
  datasets.selected = position;
  header.selected_time = 1;
  SAY("Found " + datasets.path(position));
}

void select_nearest(XmdfFileHeader& header, float request, float tolerance) {
  XmdfDatasets& datasets = header.datasets();
  header.selected_time = NearestXmdfTime(header.times, request, tolerance);
  datasets.selected = datasets.temporal;
}

// A dataset that holds times of peak has one output, at time 0, and no maximum of its own.
bool asks_for_times_folder(float request) {
  return std::fabs(request - stored_when_time) <= 0.001F;
}

void find_time(XmdfFileHeader& header, float request, float tolerance) {
  SAY("Searching xmdf file: " + QUOTED(header.file_name));
  header.selected_time = 0;
  // Exact on purpose: the search for water levels is the one with a tolerance.
  if (request == stored_maximum_time) {
    SAY("Looking for data in /Maximums/ folder.");
    select_stored(header, header.datasets().maximums);
  } else if (request == stored_minimum_time) {
    select_stored(header, header.datasets().minimums);
  } else if (asks_for_times_folder(request)) {
    SAY("ERROR - Should not be here (extract vector for /times/)");
  } else {
    select_nearest(header, request, tolerance);
  }
}

void read_stored(XmdfFileHeader& header, const std::string& what, std::int32_t position,
                 RES_TYPE& record) {
  const std::string& path = header.datasets().path(position);
  SAY("Getting " + what + " data from: " + header.file_name);
  SAY("Getting data from group: " + path);
  OPEN_XMDF_GROUP(header, path);
  READ_XMDF_OUTPUT(header, path, "maximums", header.uses_vectors(), 1, record);
  SAY("Closing Group");
  CLOSE_XMDF_GROUP(header);
  SAY("Done");
}

void fold_time_series(XmdfFileHeader& header, Extreme extreme, std::string_view start,
                      RES_TYPE& step, FileExtreme& file) {
  const XmdfDatasets& datasets = header.datasets();
  const std::string& path = datasets.path(datasets.temporal);
  SAY(std::string(start) + " " + header.file_name);
  SAY("Opening data group: " + path);
  OPEN_XMDF_GROUP(header, path);
  for (std::size_t output = 1; output <= header.group_times.size(); ++output) {
    const auto time = static_cast<float>(header.group_times[output - 1]);
    if (IS_MARKER_MAP(time)) {
      SAY("Skipping marker time, time found: " + AREAL(time));
      continue;
    }
    READ_XMDF_OUTPUT(header, path, "timestep", header.uses_vectors(),
                     static_cast<std::int32_t>(output), step);
    FOLD_OUTPUT_TIME(extreme, step, file);
  }
  SAY("Closing Group");
  CLOSE_XMDF_GROUP(header);
  SAY("Done");
}

}  // namespace

void FindXmdfTime(std::vector<XmdfFileHeader>& files, float requestTime, float tolerance) {
  SAY("Searching XMDF files for specified output time: " + AREAL(requestTime));
  for (XmdfFileHeader& header : files) find_time(header, requestTime, tolerance);
}

std::int32_t NearestXmdfTime(const std::vector<double>& times, float requestTime, float tolerance) {
  std::size_t nearest = 0;
  double least = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < times.size(); ++i) {
    const double difference = std::fabs(times[i] - double{requestTime});
    if (!(difference < least)) continue;  // a time that is no number is never nearest
    nearest = i;
    least = difference;
  }
  if (times.empty()) return 1;
  const auto chosen = static_cast<float>(times[nearest]);
  const bool is_near = std::fabs(chosen - requestTime) - tolerance <= 0;
  if (!is_near) {
    FAIL_RUN("ERROR - Closest time " + QUOTED(AREAL(chosen)) +
             " is not within time search tolerance");
  }
  SAY("Found closest time: " + AREAL(chosen));
  return static_cast<std::int32_t>(nearest) + 1;
}

void ReadXmdfData(XmdfFileHeader& header, bool isVector, std::int32_t timeIndex, bool openGroup,
                  bool closeGroup, RES_TYPE& record) {
  const XmdfDatasets& datasets = header.datasets();
  const std::int32_t position = datasets.selected != 0 ? datasets.selected : datasets.temporal;
  const std::int32_t output = timeIndex > 0 ? timeIndex : header.selected_time;
  if (position == 0 || output == 0) {
    FAIL_RUN("ERROR - Unable trying to open group ID = 0 [xmdf_get_data_time]");
  }
  const std::string& path = datasets.path(position);
  if (openGroup) {
    SAY("Getting data from: " + header.file_name);
    SAY("Getting data from group: " + path);
    SAY("Opening Group.");
    OPEN_XMDF_GROUP(header, path);
    SAY("Done.");
  }
  SAY(std::string("Reading ") + (isVector ? "vector" : "scalar") + " data at timestep " +
      AINTEGER(output));
  READ_XMDF_OUTPUT(header, path, "data", isVector, output, record);
  if (closeGroup) {
    SAY("Processing final timestep... closing group");
    CLOSE_XMDF_GROUP(header);
    SAY("Done");
    SAY("Finished getting data");
  }
}

void ReadXmdfMaximum(XmdfFileHeader& header, RES_TYPE& record) {
  read_stored(header, "maximum", header.datasets().maximums, record);
}

void ReadXmdfMinimum(XmdfFileHeader& header, RES_TYPE& record) {
  read_stored(header, "minimum", header.datasets().minimums, record);
}

void ReadXmdfSingleTime(XmdfFileHeader& header, RES_TYPE& record) {
  const XmdfDatasets& datasets = header.datasets();
  const std::string& path = datasets.path(datasets.selected);
  OPEN_XMDF_GROUP(header, path);
  if (header.group_times.size() > 1) {
    SAY_APART("ERROR - Multiple output times exits, expecting 1.");
    SAY("Contact " + std::string(support_email));
    EXITS();
  }
  READ_XMDF_OUTPUT(header, path, "data", header.uses_vectors(), 1, record);
  SAY("Closing Group");
  CLOSE_XMDF_GROUP(header);
  SAY("Done");
}

void ReadXmdfTemporalMaximum(XmdfFileHeader& header, RES_TYPE& step, FileExtreme& file) {
  fold_time_series(header, Extreme::maximum, "Extracting maximums from /Temporal/ folder in", step,
                   file);
}

void ReadXmdfTemporalMinimum(XmdfFileHeader& header, RES_TYPE& step, FileExtreme& file) {
  fold_time_series(header, Extreme::minimum, "Extracting minimums from /Temporal/ folder in", step,
                   file);
}

}  // namespace quillet
