// Values inside a part of an element, from those at its corners: linear in triangles, bilinear in
// quadrilaterals. Coordinates may be of any unit and origin that keep angles.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "mesh/part_mesh.h"

namespace quillet {

struct MapPoint {
  double x = 0;
  double y = 0;

  friend MapPoint operator-(const MapPoint& a, const MapPoint& b) { return {a.x - b.x, a.y - b.y}; }
  friend MapPoint operator+(const MapPoint& a, const MapPoint& b) { return {a.x + b.x, a.y + b.y}; }
  friend MapPoint operator*(double factor, const MapPoint& a) {
    return {factor * a.x, factor * a.y};
  }
};

inline double CROSS(const MapPoint& a, const MapPoint& b) {
  return a.x * b.y - a.y * b.x;
}

using PartCorners = std::array<MapPoint, 4>;  // the fourth is not used in triangles

// A value that varies linearly over a triangle (with an area): value(p) = at_origin + along x and
// y.
struct LinearField {
  MapPoint origin;
  double at_origin = 0;
  double per_x = 0;
  double per_y = 0;

  LinearField(const PartCorners& corners, const std::array<float, 4>& values)
      : origin(corners[0]), at_origin(values[0]) {
    const MapPoint b = corners[1] - corners[0];
    const MapPoint c = corners[2] - corners[0];
    const double rise_b = double{values[1]} - values[0];
    const double rise_c = double{values[2]} - values[0];
    const double area = CROSS(b, c);
    per_x = (rise_b * c.y - rise_c * b.y) / area;
    per_y = (rise_c * b.x - rise_b * c.x) / area;
  }

  double at(const MapPoint& point) const {
    return at_origin + per_x * (point.x - origin.x) + per_y * (point.y - origin.y);
  }
};

// Where a point lies in a quadrilateral: across from 0 on the edge between the corners 0 and 3 to 1
// on that between 1 and 2, and up from 0 on the edge 0-1 to 1 on the edge 3-2.
struct QuadPlace {
  double across = 0;
  double up = 0;
};

// The way back from a point of a convex quadrilateral, corners counter-clockwise, to its place:
// point = corner 0 + across * b + up * c + across * up * d.
struct QuadMap {
  MapPoint origin, b, c, d;
  double bend, cross_cb;

  explicit QuadMap(const PartCorners& corners)
      : origin(corners[0]),
        b(corners[1] - corners[0]),
        c(corners[3] - corners[0]),
        d((corners[2] - corners[1]) - (corners[3] - corners[0])),
        bend(-CROSS(c, d)),
        cross_cb(CROSS(c, b)) {}

  // `up` solves bend * up^2 + slope * up + start = 0. The root where the map does not fold is the
  // one with the positive derivative, in the form that does not cancel.
  QuadPlace place(const MapPoint& point) const {
    const MapPoint from = point - origin;
    const double slope = CROSS(from, d) - cross_cb;
    const double start = CROSS(from, b);
    const double root = std::sqrt(std::max(slope * slope - 4 * bend * start, 0.0));
    const double sum = slope + root;
    double up = sum > 0 ? -2 * start / sum : bend != 0 ? (root - slope) / (2 * bend) : 0;
    up = std::clamp(up, 0.0, 1.0);
    const MapPoint line = b + up * d;
    const MapPoint rest = from - up * c;
    const double length = line.x * line.x + line.y * line.y;
    const double across = length > 0 ? (rest.x * line.x + rest.y * line.y) / length : 0;
    return {std::clamp(across, 0.0, 1.0), up};
  }
};

// A value that varies bilinearly over a quadrilateral.
struct BilinearField {
  double at_origin, per_across, per_up, per_both;

  explicit BilinearField(const std::array<float, 4>& values)
      : at_origin(values[0]),
        per_across(double{values[1]} - values[0]),
        per_up(double{values[3]} - values[0]),
        per_both((double{values[2]} - values[1]) - (double{values[3]} - values[0])) {}

  double at(const QuadPlace& place) const {
    return at_origin + place.across * per_across + place.up * (per_up + place.across * per_both);
  }
};

inline PartCorners CORNERS_OF(const PartMesh& mesh, const MeshPart& part) {
  PartCorners corners;
  for (int i = 0; i < part.corners(); ++i) {
    corners[i] = {mesh.x[part.nodes[i]], mesh.y[part.nodes[i]]};
  }
  return corners;
}

// The node (index, from 0) nearest to a point; of equally near ones that with the lowest id.
inline std::int32_t NEAREST_NODE(const PartCorners& corners, const MeshPart& part,
                                 const MapPoint& point) {
  std::int32_t nearest = part.nodes[0];
  double least = std::numeric_limits<double>::max();
  for (int i = 0; i < part.corners(); ++i) {
    const MapPoint away = point - corners[i];
    const double distance = away.x * away.x + away.y * away.y;
    if (distance < least || (distance == least && part.nodes[i] < nearest)) {
      least = distance;
      nearest = part.nodes[i];
    }
  }
  return nearest;
}

// Values that say "wet in one run only" or "never" instead of how much: between such a value and
// another nothing can be interpolated.
inline bool IS_NO_QUANTITY(float value) {
  return value == 99.0F || value == -99.0F || value == -99999.0F;
}

}  // namespace quillet
