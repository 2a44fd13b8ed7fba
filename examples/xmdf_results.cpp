#include "xmdf_results.h"

#include <fmt/format.h>

#include <stdexcept>

namespace quillet::example {
namespace {

constexpr float maximums_time = 99999.0f;
constexpr float minimums_time = -99999.0f;
constexpr float special_time = 0.0f;

}  // namespace

XmdfResults::XmdfResults(const std::string& path, const std::string& group,
                         const XMDF_STORAGE_TYPE& storage)
    : path_(path), group_(group), storage_(storage) {
  check(XF_CREATE_FILE(path, file_));
  temporal_ = make_folder("Temporal", storage.times);
}

XmdfResults::FOLDER_TYPE XmdfResults::make_folder(const std::string& name, int times) {
  FOLDER_TYPE made;
  check(XF_CREATE_GENERIC_GROUP(file_, group_ + "/" + name, made.folder));
  made.level = make_dataset(made.folder, "Water Level", "m", times);
  made.depth = make_dataset(made.folder, "Depth", "m", times);
  made.vectors = make_dataset(made.folder, "Vector Velocity", "m/s", times, true);
  made.speed = make_dataset(made.folder, "Velocity", "m/s", times);
  return made;
}

XfDatasetWriter XmdfResults::make_dataset(const XfFolder& folder, const std::string& name,
                                          const char* units, int times, bool vector) {
  XfDatasetOptions options;
  options.units = units;
  options.compression = storage_.compression;
  options.expected_times = times;
  options.times_per_chunk = times == 1 ? 1 : storage_.times_per_chunk;
  XfDatasetWriter dataset;
  check(vector ? XF_CREATE_VECTOR_DATASET(folder, name, options, dataset)
               : XF_CREATE_SCALAR_DATASET(folder, name, options, dataset));
  return dataset;
}

void XmdfResults::write(float hours, const RESULT_MAPS_TYPE& maps) {
  write_maps(temporal_, hours, maps);
}

void XmdfResults::write_maps(const FOLDER_TYPE& folder, float hours, const RESULT_MAPS_TYPE& maps) {
  const std::size_t points = maps.level.size();
  speed_.resize(points);
  for (std::size_t i = 0; i < points; ++i) {
    speed_[i] = magnitude(maps.velocity[2 * i], maps.velocity[2 * i + 1]);
  }
  const XfRange speeds = XF_RANGE_OF(speed_.data(), points);
  write_scalar(folder.level, hours, maps.level, maps.wet);
  write_scalar(folder.depth, hours, maps.depth, maps.wet);
  check(XF_WRITE_VECTOR_TIMESTEP(folder.vectors, hours, maps.velocity, speeds));
  check(XF_WRITE_ACTIVITY_TIMESTEP(folder.vectors, maps.wet));
  write_scalar(folder.speed, hours, speed_, maps.wet);
}

void XmdfResults::write_scalar(const XfDatasetWriter& dataset, float hours,
                               const std::vector<float>& values,
                               const std::vector<std::int8_t>& wet) {
  check(
      XF_WRITE_SCALAR_TIMESTEP(dataset, hours, values, XF_RANGE_OF(values.data(), values.size())));
  check(XF_WRITE_ACTIVITY_TIMESTEP(dataset, wet));
}

void XmdfResults::write_history(const FLOOD_HISTORY_TYPE& history) {
  write_extremes("Maximums", maximums_time, history.maxima);
  write_extremes("Minimums", minimums_time, history.minima);
  XfFolder folder;
  check(XF_CREATE_GENERIC_GROUP(file_, group_ + "/Times", folder));
  const std::vector<std::int8_t>& wet = history.maxima.wet;
  write_special_time(folder, "Time of Peak h", history.time_of_peak, wet);
  write_special_time(folder, fmt::format("Time of First Depth > {}", inundation_depth),
                     history.time_of_first, wet);
  write_special_time(folder, fmt::format("Duration Above {}m", inundation_depth),
                     history.duration_flooded, wet);
  check(XF_CLOSE_GROUP(folder));
}

void XmdfResults::write_extremes(const std::string& folder, float hours,
                                 const RESULT_MAPS_TYPE& maps) {
  FOLDER_TYPE made = make_folder(folder, 1);
  write_maps(made, hours, maps);
  close_folder(made);
}

void XmdfResults::write_special_time(const XfFolder& folder, const std::string& name,
                                     const std::vector<float>& values,
                                     const std::vector<std::int8_t>& wet) {
  XfDatasetWriter dataset = make_dataset(folder, name, "h", 1);
  write_scalar(dataset, special_time, values, wet);
  check(XF_CLOSE_GROUP(dataset));
}

void XmdfResults::close_folder(FOLDER_TYPE& folder) {
  for (XfDatasetWriter* const dataset :
       {&folder.level, &folder.depth, &folder.vectors, &folder.speed}) {
    check(XF_CLOSE_GROUP(*dataset));
  }
  check(XF_CLOSE_GROUP(folder.folder));
}

void XmdfResults::close() {
  close_folder(temporal_);
  check(XF_CLOSE_FILE(file_));
}

void XmdfResults::check(const XfStatus& status) const {
  if (!status.ok()) {
    throw std::runtime_error(fmt::format("cannot write \"{}\": {}", path_, status.reason));
  }
}

}  // namespace quillet::example
