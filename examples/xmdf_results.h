#pragma once

#include <string>

#include "flood_history.h"
#include "flood_solution.h"
#include "xf/xf_writer.h"

namespace quillet::example {

struct XMDF_STORAGE_TYPE {
  int compression;  // deflate level; 0 is none
  int times;        // output times that will be written
  int times_per_chunk;
};

// The results of a run as one XMDF file, in the folders that engines use:
//   run1/Temporal, Maximums, Minimums: Water Level, Depth, Vector Velocity, Velocity
//   run1/Times: Time of Peak h, Time of First Depth > 0.1, Duration Above 0.1m
// Maximums stand at time 99999, minimums at -99999, special times at 0. Every failure throws
// std::runtime_error with the file's name.
class XmdfResults {
 public:
  XmdfResults(const std::string& path, const std::string& group, const XMDF_STORAGE_TYPE& storage);

  void write(float hours, const RESULT_MAPS_TYPE& maps);
  void write_history(const FLOOD_HISTORY_TYPE& history);
  void close();

 private:
  struct FOLDER_TYPE {
    XfFolder folder;
    XfDatasetWriter level;
    XfDatasetWriter depth;
    XfDatasetWriter vectors;
    XfDatasetWriter speed;
  };

  FOLDER_TYPE make_folder(const std::string& name, int times);
  XfDatasetWriter make_dataset(const XfFolder& folder, const std::string& name, const char* units,
                               int times, bool vector = false);
  void write_maps(const FOLDER_TYPE& folder, float hours, const RESULT_MAPS_TYPE& maps);
  void write_scalar(const XfDatasetWriter& dataset, float hours, const std::vector<float>& values,
                    const std::vector<std::int8_t>& wet);
  void write_extremes(const std::string& folder, float hours, const RESULT_MAPS_TYPE& maps);
  void write_special_time(const XfFolder& folder, const std::string& name,
                          const std::vector<float>& values, const std::vector<std::int8_t>& wet);
  void close_folder(FOLDER_TYPE& folder);
  void check(const XfStatus& status) const;

  std::string path_;
  std::string group_;
  XMDF_STORAGE_TYPE storage_;
  XfFile file_;
  FOLDER_TYPE temporal_;
  std::vector<float> speed_;
};

}  // namespace quillet::example
