#pragma once

namespace quillet::example {

// The valley in its own coordinates: s metres down the valley, n metres to the left of its axis.
// A meandering channel, flood plains, a levee along the left plain, a mound on the right one.
constexpr double valley_length = 3000.0;
constexpr double valley_width = 600.0;
constexpr double bed_slope = 0.0015;

// Elevation of the channel's bed at its centre, to which the other heights refer (m).
double valley_elevation(double s);

// Rise of the channel's centre line to the left per metre down the valley.
double meander_slope(double s);

// Distance from the channel's centre line, positive to the left (m).
double channel_distance(double s, double n);

// 1 in the middle of the channel, falling to 0 on its banks.
double channel_share(double distance);

bool behind_levee(double s, double n);
double levee_crest(double s, double levee_raise);

// Bed elevation (m) with the levee's crest raised by `levee_raise` metres.
double bed_elevation(double s, double n, double levee_raise);

struct MAP_POINT_TYPE {
  double x;
  double y;
};

// Turns valley directions into map directions, and valley positions into map coordinates.
MAP_POINT_TYPE map_direction(double s, double n);
MAP_POINT_TYPE map_position(double s, double n);

// Angle of the valley's axis on the map, degrees counter-clockwise from east.
constexpr double valley_bearing = 25.0;
constexpr MAP_POINT_TYPE map_origin = {292400.0, 6176800.0};

}  // namespace quillet::example
