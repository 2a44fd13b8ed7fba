#include "points/point_location.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quillet {
namespace {

struct Box {
  double x_low = std::numeric_limits<double>::max();
  double x_high = std::numeric_limits<double>::lowest();
  double y_low = std::numeric_limits<double>::max();
  double y_high = std::numeric_limits<double>::lowest();

  void add(const MapPoint& point) {
    x_low = std::min(x_low, point.x);
    x_high = std::max(x_high, point.x);
    y_low = std::min(y_low, point.y);
    y_high = std::max(y_high, point.y);
  }

  bool holds(const MapPoint& point) const {
    return point.x >= x_low && point.x <= x_high && point.y >= y_low && point.y <= y_high;
  }
};

// The points sorted into equal boxes, about one in each.
class PointBoxes {
 public:
  explicit PointBoxes(std::span<const MapPoint> all_points) : points(all_points) {
    for (const MapPoint& point : points) extent.add(point);
    side = std::max(1, static_cast<int>(std::sqrt(static_cast<double>(points.size()))));
    columns_per_m = boxes_per_m(extent.x_low, extent.x_high);
    rows_per_m = boxes_per_m(extent.y_low, extent.y_high);
    boxes.resize(static_cast<std::size_t>(side) * side);
    for (std::size_t i = 0; i < points.size(); ++i) {
      boxes[index(column(points[i].x), row(points[i].y))].push_back(i);
    }
  }

  // Hands on the index of every point in the given box.
  template <typename Use>
  void for_each_in(const Box& box, const Use& use) const {
    if (box.x_high < extent.x_low || box.x_low > extent.x_high) return;
    if (box.y_high < extent.y_low || box.y_low > extent.y_high) return;
    const int last_row = row(box.y_high);
    const int last_column = column(box.x_high);
    for (int r = row(box.y_low); r <= last_row; ++r) {
      for (int c = column(box.x_low); c <= last_column; ++c) {
        for (const std::size_t i : boxes[index(c, r)]) {
          if (box.holds(points[i])) use(i);
        }
      }
    }
  }

 private:
  double boxes_per_m(double low, double high) const { return high > low ? side / (high - low) : 0; }
  // Also of what is no number: an extent may be larger than the largest one.
  int place(double boxes_from_start) const {
    return boxes_from_start > 0 ? static_cast<int>(std::min(boxes_from_start, side - 1.0)) : 0;
  }
  int column(double x) const { return place((x - extent.x_low) * columns_per_m); }
  int row(double y) const { return place((y - extent.y_low) * rows_per_m); }
  std::size_t index(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(side) +
           static_cast<std::size_t>(column);
  }

  std::span<const MapPoint> points;
  Box extent;
  int side = 1;
  double columns_per_m = 0;
  double rows_per_m = 0;
  std::vector<std::vector<std::size_t>> boxes;
};

Box box_around(const PartCorners& corners, int count, double tolerance) {
  Box box;
  for (int i = 0; i < count; ++i) box.add(corners[i]);
  return {box.x_low - tolerance, box.x_high + tolerance, box.y_low - tolerance,
          box.y_high + tolerance};
}

// No further outside any edge than the tolerance.
bool contains(const PartCorners& corners, int count, double tolerance, const MapPoint& point) {
  for (int i = 0; i < count; ++i) {
    const MapPoint edge = corners[(i + 1) % count] - corners[i];
    const double length = std::hypot(edge.x, edge.y);
    if (CROSS(edge, point - corners[i]) < -tolerance * length) return false;
  }
  return true;
}

std::array<double, 4> triangle_weights(const PartCorners& corners, const MapPoint& point) {
  const MapPoint b = corners[1] - corners[0];
  const MapPoint c = corners[2] - corners[0];
  const MapPoint from = point - corners[0];
  const double area = CROSS(b, c);
  const double of_b = CROSS(from, c) / area;
  const double of_c = CROSS(b, from) / area;
  return {1 - of_b - of_c, of_b, of_c, 0};
}

std::array<double, 4> quad_weights(const PartCorners& corners, const MapPoint& point) {
  const auto [across, up] = QuadMap(corners).place(point);
  return {(1 - across) * (1 - up), across * (1 - up), across * up, (1 - across) * up};
}

bool needs_nearest(const PlaceInPart& place, const MeshValues& values) {
  if (values.take_nearest || !values.may_hold_codes) return values.take_nearest;
  const auto begin = place.part.nodes.begin();
  return std::any_of(begin, begin + place.part.corners(),
                     [&](std::int32_t node) { return IS_NO_QUANTITY(values.value[node]); });
}

float value_in(const PlaceInPart& place, const MeshValues& values) {
  if (values.per_element) return values.value[place.part.element];
  if (needs_nearest(place, values)) return values.value[place.nearest];
  double sum = 0;
  for (int i = 0; i < place.part.corners(); ++i) {
    sum += place.weights[i] * values.value[place.part.nodes[i]];
  }
  return static_cast<float>(sum);
}

}  // namespace

std::vector<PointPlaces> LOCATE_POINTS(const PartMesh& mesh, std::span<const MapPoint> points) {
  std::vector<PointPlaces> places(points.size());
  const PointBoxes boxes(points);
  const double tolerance = mesh.edge_tolerance();
  for (const MeshPart& part : mesh.parts) {
    const PartCorners corners = CORNERS_OF(mesh, part);
    boxes.for_each_in(box_around(corners, part.corners(), tolerance), [&](std::size_t i) {
      const MapPoint& point = points[i];
      if (!contains(corners, part.corners(), tolerance, point)) return;
      places[i].push_back(
          {part,
           part.is_triangle() ? triangle_weights(corners, point) : quad_weights(corners, point),
           NEAREST_NODE(corners, part, point)});
    });
  }
  return places;
}

std::optional<float> VALUE_AT(const PointPlaces& places, const MeshValues& values) {
  for (const PlaceInPart& place : places) {
    if (!values.is_wet(place.part.element)) continue;
    const float value = value_in(place, values);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace quillet
