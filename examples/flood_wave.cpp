#include "flood_wave.h"

#include <algorithm>
#include <cmath>

#include "flood_terrain.h"

namespace quillet::example {
namespace {

constexpr double base_depth = 0.9;         // m
constexpr double celerity = 0.8 * 3600.0;  // m/h
constexpr double attenuation_length = 25'000.0;
constexpr double shortest_flood = 6.0;  // h

constexpr double station_spacing = valley_length / (stations - 1);
constexpr int steps_per_output = 50;
constexpr double time_step = 0.5 / steps_per_output;  // h
constexpr double pond_speed = 0.35 * 3600.0;          // m/h
constexpr double pond_drain_time = 4.0;               // h
constexpr double weir_coefficient = 7.0;              // rise in m/h per m^1.5 of head
constexpr double pond_floor_height = 2.75;            // m
static_assert(pond_speed * time_step < station_spacing, "the upwind steps must be stable");

class River {
 public:
  River(const SCENARIO_TYPE& scenario, double duration)
      : rise_(scenario.peak_rise), time_to_peak_(scenario.peak_share * duration) {}

  double surface(double s, double t) const {
    const double u = (t - s / celerity) / time_to_peak_;
    const double wave = u > 0.0 ? std::pow(u * std::exp(1.0 - u), 4.0) : 0.0;
    return valley_elevation(s) + base_depth + rise_ * std::exp(-s / attenuation_length) * wave;
  }

  double rate(double s, double t) const {
    constexpr double half_span = 0.05;  // h
    return (surface(s, t + half_span) - surface(s, t - half_span)) / (2.0 * half_span);
  }

 private:
  double rise_;
  double time_to_peak_;
};

double pond_floor(double s) {
  return valley_elevation(s) + pond_floor_height;
}

class Ponds {
 public:
  Ponds(const River& river, double levee_raise) : river_(river), levee_raise_(levee_raise) {}

  void advance(double t) {
    double upstream = 0.0;
    for (int k = 0; k < stations; ++k) {
      const double here = depth_[k];
      const double passing = pond_speed / station_spacing * (here - upstream);
      rate_[k] = inflow(k, t) - passing - here / pond_drain_time;
      depth_[k] = here + time_step * rate_[k];
      upstream = here;
    }
  }

  double surface(int k) const { return pond_floor(k * station_spacing) + depth_[k]; }
  double rate(int k) const { return rate_[k]; }

 private:
  // Nothing flows into a pond that stands as high as the river.
  double inflow(int k, double t) const {
    const double s = k * station_spacing;
    const double barrier = std::max(levee_crest(s, levee_raise_), surface(k));
    const double head = std::max(0.0, river_.surface(s, t) - barrier);
    return weir_coefficient * head * std::sqrt(head);
  }

  const River& river_;
  double levee_raise_;
  std::vector<double> depth_ = std::vector<double>(stations);
  std::vector<double> rate_ = std::vector<double>(stations);
};

FLOOD_PROFILE_TYPE profile_at(const River& river, const Ponds& ponds, double t) {
  FLOOD_PROFILE_TYPE profile;
  profile.surface.resize(2 * stations);
  profile.rate.resize(2 * stations);
  for (int k = 0; k < stations; ++k) {
    const double s = k * station_spacing;
    profile.surface[k] = static_cast<float>(river.surface(s, t));
    profile.rate[k] = static_cast<float>(river.rate(s, t));
    profile.surface[stations + k] = static_cast<float>(ponds.surface(k));
    profile.rate[stations + k] = static_cast<float>(ponds.rate(k));
  }
  return profile;
}

}  // namespace

// The flood lasts as long as the output times do, so that long runs are not mostly recession.
std::vector<FLOOD_PROFILE_TYPE> flood_profiles(const SCENARIO_TYPE& scenario,
                                               const std::vector<float>& times) {
  const River river(scenario, std::max<double>(shortest_flood, times.back()));
  Ponds ponds(river, scenario.levee_raise);
  std::vector<FLOOD_PROFILE_TYPE> profiles;
  profiles.reserve(times.size());
  for (const float time : times) {
    profiles.push_back(profile_at(river, ponds, time));
    for (int step = 0; step < steps_per_output; ++step) ponds.advance(time + step * time_step);
  }
  return profiles;
}

}  // namespace quillet::example
