#include "raster/part_rasteriser.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

#include "mesh/part_interpolation.h"
#include "support/console.h"

namespace quillet {
namespace {

// Both sides of an edge find the same crossing, to the last bit: its ends are always taken in one
// order.
struct Edge {
  double low_y, high_y, low_x, slope;

  Edge(const MapPoint& a, const MapPoint& b) {
    const bool in_order = a.y < b.y || (a.y == b.y && a.x < b.x);
    const MapPoint& low = in_order ? a : b;
    const MapPoint& high = in_order ? b : a;
    low_y = low.y;
    high_y = high.y;
    low_x = low.x;
    slope = high.y > low.y ? (high.x - low.x) / (high.y - low.y) : 0;
  }
};

template <int corner_count>
struct PartShape {
  static constexpr int corners = corner_count;
  PartCorners points;

  PartShape(const PartMesh& mesh, const MeshPart& part) {
    for (int i = 0; i < corners; ++i) {
      points[i] = {mesh.x[part.nodes[i]], mesh.y[part.nodes[i]]};
    }
  }

  // From each corner to the next.
  std::array<Edge, corners> edges() const {
    if constexpr (corners == 3) {
      return {Edge(points[0], points[1]), Edge(points[1], points[2]), Edge(points[2], points[0])};
    } else {
      return {Edge(points[0], points[1]), Edge(points[1], points[2]), Edge(points[2], points[3]),
              Edge(points[3], points[0])};
    }
  }
};

struct Range {
  double low = std::numeric_limits<double>::max();
  double high = std::numeric_limits<double>::lowest();

  void add(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
};

// Of values that a 32-bit integer holds. The library's routines are calls on processors that have
// no instruction for it, which the build does not count on.
std::int32_t ceiling(double value) {
  const auto whole = static_cast<std::int32_t>(value);
  return whole + (whole < value ? 1 : 0);
}
std::int32_t floor_of(double value) {
  const auto whole = static_cast<std::int32_t>(value);
  return whole - (whole > value ? 1 : 0);
}

// The whole numbers from `low` to `high` that also lie from `first` to `last`.
struct Cells {
  std::int32_t first, last;

  Cells(double low, double high, std::int32_t first_cell, std::int32_t last_cell)
      : first(ceiling(std::max<double>(low, first_cell))),
        last(floor_of(std::min<double>(high, last_cell))) {}
};

// The cells of a block that lie in the raster.
struct Window {
  std::int32_t first_row, last_row, first_column, last_column;
  std::int64_t stride;  // cells from one row to the next
  float* cells;         // of the first row and column
};

// Hands every stretch of cells whose centres lie in the part, row by row, to
// fill(y, first column, last column, first cell).
template <typename Shape, typename Fill>
void for_each_stretch(const Shape& shape, double tolerance, const Window& window,
                      const Fill& fill) {
  Range y;
  for (int i = 0; i < shape.corners; ++i) y.add(shape.points[i].y);
  const Cells rows(-y.high - tolerance, -y.low + tolerance, window.first_row, window.last_row);
  if (rows.first > rows.last) return;
  const auto edges = shape.edges();
  for (std::int32_t row = rows.first; row <= rows.last; ++row) {
    Range x;
    const double at = -row;
    for (const Edge& edge : edges) {
      if (at < edge.low_y - tolerance || at > edge.high_y + tolerance) continue;
      const double height = std::clamp(at, edge.low_y, edge.high_y) - edge.low_y;
      x.add(edge.low_x + height * edge.slope);
    }
    const Cells columns(x.low - tolerance, x.high + tolerance, window.first_column,
                        window.last_column);
    if (columns.first > columns.last) continue;
    float* const cells = window.cells + (row - window.first_row) * window.stride +
                         (columns.first - window.first_column);
    fill(at, columns.first, columns.last, cells);
  }
}

// Draws one part by a rule that tells the value at a point.
template <typename Shape, typename Value>
void draw_part(const Shape& shape, double tolerance, const Window& window, const Value& value) {
  for_each_stretch(
      shape, tolerance, window, [&](double y, std::int32_t first, std::int32_t last, float* cells) {
        for (std::int32_t column = first; column <= last; ++column) {
          *cells++ = static_cast<float>(value(MapPoint{static_cast<double>(column), y}));
        }
      });
}

bool any_is_no_quantity(const std::array<float, 4>& values, int count) {
  return std::any_of(values.begin(), values.begin() + count, IS_NO_QUANTITY);
}

template <int corners>
void draw_node_values(const PartMesh& mesh, const MeshPart& part, const MeshValues& values,
                      double tolerance, const Window& window) {
  const PartShape<corners> shape(mesh, part);
  std::array<float, 4> corner{};
  for (int i = 0; i < corners; ++i) corner[i] = values.value[part.nodes[i]];
  const bool has_code = values.may_hold_codes && any_is_no_quantity(corner, corners);
  if (values.take_nearest || has_code) {
    draw_part(shape, tolerance, window, [&](const MapPoint& point) {
      return values.value[NEAREST_NODE(shape.points, part, point)];
    });
  } else if constexpr (corners == 3) {
    const LinearField field(shape.points, corner);
    draw_part(shape, tolerance, window, [&](const MapPoint& point) { return field.at(point); });
  } else {
    const QuadMap map(shape.points);
    const BilinearField field(corner);
    draw_part(shape, tolerance, window,
              [&](const MapPoint& point) { return field.at(map.place(point)); });
  }
}

template <int corners>
void draw_part_of_mesh(const PartMesh& mesh, const MeshPart& part, const MeshValues& values,
                       double tolerance, const Window& window) {
  if (values.per_element) {
    const float value = values.value[part.element];
    draw_part(PartShape<corners>(mesh, part), tolerance, window,
              [value](const MapPoint&) { return value; });
  } else {
    draw_node_values<corners>(mesh, part, values, tolerance, window);
  }
}

}  // namespace

PartRasteriser::PartRasteriser(PartMesh placed_mesh, const RasterGrid& grid,
                               double tolerance_in_cells, const BlockSize& block_size) try
    : mesh(std::move(placed_mesh)),
      tolerance(std::max(tolerance_in_cells, 1e-9)),
      rows(grid.rows),
      columns(grid.columns),
      size(block_size),
      counts(rows, columns, size) {
  starts.assign(static_cast<std::size_t>(counts.total()) + 1, 0);
  for (const MeshPart& part : mesh.parts) {
    for_each_block_of(part, [&](std::size_t block) { ++starts[block]; });
  }
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  parts.resize(static_cast<std::size_t>(starts.back()));
  // Filled from the end of each block's stretch, its start moves to where it belongs.
  for (const MeshPart& part : mesh.parts) {
    for_each_block_of(
        part, [&](std::size_t block) { parts[static_cast<std::size_t>(--starts[block])] = part; });
  }
  mesh.parts = {};
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

PartRasteriser::Blocks PartRasteriser::blocks_of(const MeshPart& part) const {
  Range x;
  Range y;
  for (int i = 0; i < part.corners(); ++i) {
    x.add(mesh.x[part.nodes[i]]);
    y.add(-mesh.y[part.nodes[i]]);
  }
  const Cells across(x.low - tolerance, x.high + tolerance, 0, columns - 1);
  const Cells down(y.low - tolerance, y.high + tolerance, 0, rows - 1);
  if (across.first > across.last || down.first > down.last) return {1, 0, 1, 0};
  return {down.first / size.rows, down.last / size.rows, across.first / size.columns,
          across.last / size.columns};
}

template <typename Use>
void PartRasteriser::for_each_block_of(const MeshPart& part, const Use& use) const {
  const Blocks blocks = blocks_of(part);
  for (std::int64_t row = blocks.first_row; row <= blocks.last_row; ++row) {
    for (std::int64_t column = blocks.first_column; column <= blocks.last_column; ++column) {
      use(static_cast<std::size_t>(row * counts.across + column));
    }
  }
}

bool PartRasteriser::draw(const MeshValues& values, std::int64_t block, float* cells) const {
  const auto first_row = static_cast<std::int32_t>(block / counts.across * size.rows);
  const auto first_column = static_cast<std::int32_t>(block % counts.across * size.columns);
  const Window window{
      first_row,    std::min(size.rows, rows - first_row) + first_row - 1,
      first_column, std::min(size.columns, columns - first_column) + first_column - 1,
      size.columns, cells};
  bool has_wet = false;
  const auto at = static_cast<std::size_t>(block);
  for (std::int64_t i = starts[at]; i < starts[at + 1]; ++i) {
    const MeshPart& part = parts[static_cast<std::size_t>(i)];
    if (!values.is_wet(part.element)) continue;
    if (!has_wet) std::fill(cells, cells + size.cells(), raster_no_data);
    has_wet = true;
    if (part.is_triangle()) {
      draw_part_of_mesh<3>(mesh, part, values, tolerance, window);
    } else {
      draw_part_of_mesh<4>(mesh, part, values, tolerance, window);
    }
  }
  return has_wet;
}

}  // namespace quillet
