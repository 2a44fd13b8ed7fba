#include "flood_history.h"

#include <cstddef>

namespace quillet::example {
namespace {

void start(float hours, const RESULT_MAPS_TYPE& maps, FLOOD_HISTORY_TYPE& history) {
  const std::size_t points = maps.level.size();
  history.time_of_peak.assign(points, hours);
  history.time_of_first.assign(points, never_flooded);
  history.duration_flooded.assign(points, 0.0f);
}

}  // namespace

void track_history(float hours, float interval, const RESULT_MAPS_TYPE& maps,
                   FLOOD_HISTORY_TYPE& history) {
  if (history.maxima.level.empty()) start(hours, maps, history);
  for (std::size_t i = 0; i < maps.level.size(); ++i) {
    const bool rises = !history.maxima.level.empty() && maps.level[i] > history.maxima.level[i];
    if (rises) history.time_of_peak[i] = hours;
    if (maps.depth[i] <= inundation_depth) continue;
    if (history.time_of_first[i] == never_flooded) history.time_of_first[i] = hours;
    history.duration_flooded[i] += interval;
  }
  track_maxima(maps, history.maxima);
  track_minima(maps, history.minima);
}

}  // namespace quillet::example
