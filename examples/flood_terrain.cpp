#include "flood_terrain.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quillet::example {
namespace {

constexpr double meander_amplitude = 60.0;
constexpr double meander_number = 2.0 * std::numbers::pi / 1000.0;
constexpr double bank_height = 2.6;
constexpr double channel_half_width = 24.0;

double square(double value) {
  return value * value;
}

double smooth_step(double value) {
  const double t = std::clamp(value, 0.0, 1.0);
  return t * t * (3.0 - 2.0 * t);
}

double meander_offset(double s) {
  return meander_amplitude * std::sin(meander_number * s);
}

double levee_line(double s) {
  return 105.0 + 0.5 * meander_offset(s);
}

double plain_elevation(double s, double n, double distance) {
  const double rise = 0.003 * std::abs(distance);
  const double sides = 9.0 * smooth_step((std::abs(n) - 190.0) / 110.0);
  const double mound = 2.5 * std::exp(-(square(s - 1900.0) + square(n + 135.0)) / square(45.0));
  const double ripples = 0.06 * std::sin(s / 37.0) * std::cos(n / 29.0);
  return bank_height + rise + sides + mound + ripples;
}

}  // namespace

double valley_elevation(double s) {
  return 20.0 - bed_slope * s;
}

double meander_slope(double s) {
  return meander_amplitude * meander_number * std::cos(meander_number * s);
}

double channel_distance(double s, double n) {
  return (n - meander_offset(s)) / std::sqrt(1.0 + square(meander_slope(s)));
}

double channel_share(double distance) {
  return std::exp(-square(square(distance / channel_half_width)));
}

bool behind_levee(double s, double n) {
  return n > levee_line(s);
}

// The crest dips where an old track crosses it: there the water comes over first.
double levee_crest(double s, double levee_raise) {
  const double dip = 0.35 * std::exp(-square((s - 1000.0) / 180.0));
  return valley_elevation(s) + 3.75 - dip + levee_raise;
}

double bed_elevation(double s, double n, double levee_raise) {
  constexpr double crest_half_width = 10.0;
  constexpr double batter = 0.2;
  const double distance = channel_distance(s, n);
  const double ground =
      valley_elevation(s) + (1.0 - channel_share(distance)) * plain_elevation(s, n, distance);
  const double off_crest = std::max(0.0, std::abs(n - levee_line(s)) - crest_half_width);
  return std::max(ground, levee_crest(s, levee_raise) - batter * off_crest);
}

MAP_POINT_TYPE map_direction(double s, double n) {
  static const double cosine = std::cos(valley_bearing * std::numbers::pi / 180.0);
  static const double sine = std::sin(valley_bearing * std::numbers::pi / 180.0);
  return {s * cosine - n * sine, s * sine + n * cosine};
}

MAP_POINT_TYPE map_position(double s, double n) {
  const MAP_POINT_TYPE offset = map_direction(s, n);
  return {map_origin.x + offset.x, map_origin.y + offset.y};
}

}  // namespace quillet::example
