#include "raster/part_rasteriser.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <new>

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

struct PartShape {
  int corners;
  PartCorners points;

  PartShape(const PartMesh& mesh, const MeshPart& part)
      : corners(part.corners()), points(CORNERS_OF(mesh, part)) {}
};

struct Range {
  double low = std::numeric_limits<double>::max();
  double high = std::numeric_limits<double>::lowest();

  void add(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
};

// The whole numbers from `low` to `high` that also lie from `first` to `last`.
struct Cells {
  std::int32_t first, last;

  Cells(double low, double high, std::int32_t first_cell, std::int32_t last_cell)
      : first(static_cast<std::int32_t>(std::ceil(std::max<double>(low, first_cell)))),
        last(static_cast<std::int32_t>(std::floor(std::min<double>(high, last_cell)))) {}
};

Range y_range(const PartMesh& mesh, const MeshPart& part) {
  Range range;
  for (int i = 0; i < part.corners(); ++i) range.add(mesh.y[part.nodes[i]]);
  return range;
}

// Hands every stretch of cells whose centres lie in the part, row by row, to
// fill(y, first column, last column, first cell).
template <typename Fill>
void for_each_stretch(const PartShape& shape, double tolerance, const CellBlock& block,
                      const Fill& fill) {
  const std::array<Edge, 4> edges{Edge(shape.points[0], shape.points[1]),
                                  Edge(shape.points[1], shape.points[2]),
                                  Edge(shape.points[2], shape.points[shape.corners == 3 ? 0 : 3]),
                                  Edge(shape.points[shape.corners == 3 ? 0 : 3], shape.points[0])};
  Range y;
  for (int i = 0; i < shape.corners; ++i) y.add(shape.points[i].y);
  const Cells rows(-y.high - tolerance, -y.low + tolerance, block.first_row,
                   block.first_row + block.rows - 1);
  for (std::int32_t row = rows.first; row <= rows.last; ++row) {
    Range x;
    const double at = -row;
    for (int i = 0; i < shape.corners; ++i) {
      const Edge& edge = edges[i];
      if (at < edge.low_y - tolerance || at > edge.high_y + tolerance) continue;
      const double height = std::clamp(at, edge.low_y, edge.high_y) - edge.low_y;
      x.add(edge.low_x + height * edge.slope);
    }
    const Cells columns(x.low - tolerance, x.high + tolerance, block.first_column,
                        block.first_column + block.columns - 1);
    if (columns.first > columns.last) continue;
    float* const cells =
        block.cells + (row - block.first_row) * block.stride + (columns.first - block.first_column);
    fill(at, columns.first, columns.last, cells);
  }
}

// Draws one part by a rule that tells the value at a point.
template <typename Value>
void draw_part(const PartShape& shape, double tolerance, const CellBlock& block,
               const Value& value) {
  for_each_stretch(
      shape, tolerance, block, [&](double y, std::int32_t first, std::int32_t last, float* cells) {
        for (std::int32_t column = first; column <= last; ++column) {
          *cells++ = static_cast<float>(value(MapPoint{static_cast<double>(column), y}));
        }
      });
}

bool any_is_no_quantity(const std::array<float, 4>& values, int count) {
  return std::any_of(values.begin(), values.begin() + count, IS_NO_QUANTITY);
}

void draw_node_values(const PartMesh& mesh, const MeshPart& part, const MeshValues& values,
                      double tolerance, const CellBlock& block) {
  const PartShape shape(mesh, part);
  std::array<float, 4> corner{};
  for (int i = 0; i < shape.corners; ++i) corner[i] = values.value[part.nodes[i]];
  const bool has_code = values.may_hold_codes && any_is_no_quantity(corner, shape.corners);
  if (values.take_nearest || has_code) {
    draw_part(shape, tolerance, block, [&](const MapPoint& point) {
      return values.value[NEAREST_NODE(shape.points, part, point)];
    });
  } else if (part.is_triangle()) {
    const LinearField field(shape.points, corner);
    draw_part(shape, tolerance, block, [&](const MapPoint& point) { return field.at(point); });
  } else {
    const QuadMap map(shape.points);
    const BilinearField field(corner);
    draw_part(shape, tolerance, block,
              [&](const MapPoint& point) { return field.at(map.place(point)); });
  }
}

}  // namespace

PartRasteriser::PartRasteriser(const PartMesh& placed_mesh, const RasterGrid& grid,
                               double tolerance_in_cells, std::int32_t rows_at_a_time) try
    : mesh(placed_mesh),
      tolerance(std::max(tolerance_in_cells, 1e-9)),
      last_row(grid.rows - 1),
      block_rows(rows_at_a_time) {
  const std::int32_t blocks = last_row / block_rows + 1;
  starts.assign(static_cast<std::size_t>(blocks) + 1, 0);
  const auto block_of = [&](const MeshPart& part) {
    return static_cast<std::size_t>(first_row_of(part) / block_rows);
  };
  const auto is_drawn = [&](const MeshPart& part) {
    return first_row_of(part) <= last_row_of(part);
  };
  for (const MeshPart& part : mesh.parts) {
    if (is_drawn(part)) ++starts[block_of(part) + 1];
  }
  for (std::size_t i = 1; i < starts.size(); ++i) starts[i] += starts[i - 1];
  order.resize(static_cast<std::size_t>(starts.back()));
  std::vector<std::int32_t> places(starts.begin(), starts.end() - 1);
  for (std::size_t i = mesh.parts.size(); i-- > 0;) {
    if (!is_drawn(mesh.parts[i])) continue;
    order[static_cast<std::size_t>(places[block_of(mesh.parts[i])]++)] =
        static_cast<std::int32_t>(i);
  }
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

// Of the rows of the grid; every part lies in it.
std::int32_t PartRasteriser::first_row_of(const MeshPart& part) const {
  return Cells(-y_range(mesh, part).high - tolerance, last_row, 0, last_row).first;
}

std::int32_t PartRasteriser::last_row_of(const MeshPart& part) const {
  return Cells(0, -y_range(mesh, part).low + tolerance, 0, last_row).last;
}

void PartRasteriser::rewind() {
  active.clear();
  block_number = -1;
}

void PartRasteriser::next_rows() try {
  ++block_number;
  const std::int32_t first_row = block_number * block_rows;
  std::erase_if(active, [&](std::int32_t part) {
    return last_row_of(mesh.parts[static_cast<std::size_t>(part)]) < first_row;
  });
  const auto block = static_cast<std::size_t>(block_number);
  merged.clear();
  std::merge(active.begin(), active.end(), order.begin() + starts[block],
             order.begin() + starts[block + 1], std::back_inserter(merged), std::greater<>());
  std::swap(active, merged);
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

void PartRasteriser::draw(const MeshValues& values, const CellBlock& block) const {
  for (const std::int32_t index : active) {
    const MeshPart& part = mesh.parts[static_cast<std::size_t>(index)];
    if (!values.is_wet(part.element)) continue;
    if (values.per_element) {
      const float value = values.value[part.element];
      draw_part(PartShape(mesh, part), tolerance, block,
                [value](const MapPoint&) { return value; });
    } else {
      draw_node_values(mesh, part, values, tolerance, block);
    }
  }
}

}  // namespace quillet
