// Output times that are no hours but say what the values are.
#pragma once

#include <string_view>

namespace quillet {

// Above it, times are none of the simulation.
constexpr float last_ordinary_time = 99998.0F;

// Written by simulation engines.
constexpr float stored_maximum_time = 99999.0F;   // maxima (or minima) that the engine tracked
constexpr float stored_minimum_time = -99999.0F;  // asks for the minima
constexpr float stored_when_time = 99999.1F;      // the times at which maxima occurred

// Written by -max and -min.
constexpr float maximum_marker_time = 111111.0F;
constexpr float minimum_marker_time = -111111.0F;  // 111111 in .dat files
constexpr float source_marker_time = 222222.0F;    // number of the input each value came from
constexpr float when_marker_time = 333333.0F;      // the time each value occurred

// Maps beside the maxima: they are no results.
inline bool IS_MARKER_MAP(float time) {
  return time == source_marker_time || time == when_marker_time;
}

// What is said of output times that are passed over, before the time.
constexpr std::string_view marker_map_passed_over = "Skipping marker time, time found: ";
constexpr std::string_view stored_maximum_passed_over = "Skipping times above 99,998, time found: ";
constexpr std::string_view stored_minimum_passed_over = "Skipping stored minimum, time found: ";

}  // namespace quillet
