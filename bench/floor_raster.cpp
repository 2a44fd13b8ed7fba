// The floors of --grid and --points.
//
//     floor_raster grid MESH.2dm FILE.dat CELL OUTPUT [all] [deflate]
//     floor_raster read MESH.2dm FILE.dat
//
// grid draws triangles and quadrilaterals that are wet (or all of them), all ordinary output times,
// into tiles of 256 x 256 cells and writes them, one plane after the other, without a header: as
// they are, or deflated after the floating-point predictor, which tells what deflate itself takes
// (a tile without a value is deflated once). read reads all that stands in both files. One thread,
// no checks; 9-node elements are not drawn.
#include <libdeflate.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

#include "floor_files.h"
#include "floor_full_mesh.h"

namespace quillet_floor {
namespace {

constexpr int side = 256;
constexpr float no_data = -9999;

// A convex element in cell units: x to the east, y to the south, 0 at the first centre.
struct Shape {
  int corners = 3;
  double x[4], y[4];
  float value[4];
};

struct Raster {
  double cell, left, top;
  std::int64_t columns, rows, tiles_across;
  float* band;  // a row of tiles
};

// Across the whole raster, row by row; `band` holds the rows from `first` on.
template <typename Fill>
void fill_rows(const Raster& raster, const Shape& shape, std::int64_t first, const Fill& fill) {
  double low = shape.y[0], high = shape.y[0];
  for (int i = 1; i < shape.corners; ++i) {
    low = std::min(low, shape.y[i]);
    high = std::max(high, shape.y[i]);
  }
  const auto last_row = std::min<std::int64_t>(static_cast<std::int64_t>(std::floor(high)),
                                               std::min(first + side, raster.rows) - 1);
  for (auto row = std::max(first, static_cast<std::int64_t>(std::ceil(low))); row <= last_row;
       ++row) {
    const auto y = static_cast<double>(row);
    double from = 1e300, to = -1e300;
    for (int i = 0; i < shape.corners; ++i) {
      const int j = i + 1 < shape.corners ? i + 1 : 0;
      const bool falls = shape.y[i] > shape.y[j];
      const int a = falls ? j : i, b = falls ? i : j;
      if (y < shape.y[a] || y > shape.y[b]) continue;
      const double height = shape.y[b] - shape.y[a];
      const double share = height > 0 ? (y - shape.y[a]) / height : 0;
      const double x = shape.x[a] + share * (shape.x[b] - shape.x[a]);
      from = std::min(from, x);
      to = std::max(to, x);
    }
    const auto end = static_cast<std::int64_t>(std::floor(to));
    for (auto column = static_cast<std::int64_t>(std::ceil(from)); column <= end; ++column) {
      float* const tile = raster.band + column / side * side * side;
      tile[(row - first) * side + column % side] = fill(static_cast<double>(column), y);
    }
  }
}

void draw_triangle(const Raster& raster, const Shape& s, std::int64_t first) {
  const double bx = s.x[1] - s.x[0], by = s.y[1] - s.y[0];
  const double cx = s.x[2] - s.x[0], cy = s.y[2] - s.y[0];
  const double area = bx * cy - by * cx;
  const double b = double{s.value[1]} - s.value[0], c = double{s.value[2]} - s.value[0];
  const double per_x = (b * cy - c * by) / area, per_y = (c * bx - b * cx) / area;
  fill_rows(raster, s, first, [&](double x, double y) {
    return static_cast<float>(s.value[0] + per_x * (x - s.x[0]) + per_y * (y - s.y[0]));
  });
}

// point = corner 0 + s b + t c + s t d; t solves a quadratic.
void draw_quad(const Raster& raster, const Shape& q, std::int64_t first) {
  const double bx = q.x[1] - q.x[0], by = q.y[1] - q.y[0];
  const double cx = q.x[3] - q.x[0], cy = q.y[3] - q.y[0];
  const double dx = q.x[2] - q.x[1] - cx, dy = q.y[2] - q.y[1] - cy;
  const double square = dx * cy - dy * cx;
  const double v0 = q.value[0], vs = q.value[1] - v0, vt = q.value[3] - v0;
  const double vst = double{q.value[2]} - q.value[1] - vt;
  const double sign = bx * cy - by * cx > 0 ? 1 : -1;
  fill_rows(raster, q, first, [&](double x, double y) {
    const double px = x - q.x[0], py = y - q.y[0];
    const double slope = sign * (px * dy - py * dx - (cx * by - cy * bx));
    const double start = sign * (px * by - py * bx);
    const double root = std::sqrt(std::max(slope * slope - 4 * sign * square * start, 0.0));
    const double t = -2 * start / (slope + root);
    const double ex = bx + t * dx, ey = by + t * dy;
    const double s = std::fabs(ex) > std::fabs(ey) ? (px - t * cx) / ex : (py - t * cy) / ey;
    return static_cast<float>(v0 + s * vs + t * (vt + s * vst));
  });
}

class Drawing {
 public:
  Drawing(const FullMesh& full_mesh, double cell) : mesh(full_mesh) {
    double low_x = 1e300, high_x = -1e300, low_y = 1e300, high_y = -1e300;
    for (std::int64_t i = 0; i < mesh.node_count; ++i) {
      low_x = std::min(low_x, mesh.x[i]);
      high_x = std::max(high_x, mesh.x[i]);
      low_y = std::min(low_y, mesh.y[i]);
      high_y = std::max(high_y, mesh.y[i]);
    }
    raster.cell = cell;
    raster.left = std::floor(low_x / cell) * cell;
    raster.top = std::ceil(high_y / cell) * cell;
    raster.columns = static_cast<std::int64_t>(std::ceil(high_x / cell) - std::floor(low_x / cell));
    raster.rows = static_cast<std::int64_t>(std::ceil(high_y / cell) - std::floor(low_y / cell));
    raster.tiles_across = (raster.columns + side - 1) / side;
    raster.band = make_array<float>(raster.tiles_across * side * side);
    for (std::int64_t i = 0; i < mesh.node_count; ++i) {
      mesh.x[i] = (mesh.x[i] - raster.left) / cell - 0.5;
      mesh.y[i] = (raster.top - mesh.y[i]) / cell - 0.5;
    }
    sort_elements();
  }

  template <typename Write>
  void draw(const std::int8_t* status, const float* values, const Write& write) {
    std::vector<std::int32_t> active;
    const std::int64_t band_size = raster.tiles_across * side * side;
    for (std::int64_t first = 0; first < raster.rows; first += side) {
      std::fill(raster.band, raster.band + band_size, no_data);
      const auto& begun = first_in[static_cast<std::size_t>(first / side)];
      active.insert(active.end(), begun.begin(), begun.end());
      std::size_t kept = 0;
      for (const std::int32_t element : active) {
        const Shape shape = shape_of(element, values);
        if (status[element] == 1) {
          if (shape.corners == 3) {
            draw_triangle(raster, shape, first);
          } else {
            draw_quad(raster, shape, first);
          }
        }
        const double last = *std::max_element(shape.y, shape.y + shape.corners);
        if (last >= static_cast<double>(first + side)) active[kept++] = element;
      }
      active.resize(kept);
      for (std::int64_t i = 0; i < band_size; i += side * side) write(raster.band + i);
    }
  }

  std::int64_t plane_size() const {
    return (raster.rows + side - 1) / side * raster.tiles_across * side * side * 4;
  }

 private:
  void sort_elements() {
    first_in.resize(static_cast<std::size_t>(raster.rows / side) + 1);
    for (std::int64_t i = 0; i < mesh.element_count; ++i) {
      const std::int32_t* const corner = mesh.corners + 4 * i;
      double first = mesh.y[corner[0] - 1];
      for (int k = 1; k < 4 && corner[k] != 0; ++k) first = std::min(first, mesh.y[corner[k] - 1]);
      const auto band = static_cast<std::size_t>(std::max(first, 0.0)) / side;
      first_in[band].push_back(static_cast<std::int32_t>(i));
    }
  }

  Shape shape_of(std::int32_t element, const float* values) const {
    const std::int32_t* const corner = mesh.corners + 4 * std::int64_t{element};
    Shape shape;
    shape.corners = corner[3] != 0 ? 4 : 3;
    for (int i = 0; i < shape.corners; ++i) {
      shape.x[i] = mesh.x[corner[i] - 1];
      shape.y[i] = mesh.y[corner[i] - 1];
      shape.value[i] = values[corner[i] - 1];
    }
    return shape;
  }

  const FullMesh& mesh;
  Raster raster{};
  std::vector<std::vector<std::int32_t>> first_in;  // elements by the row of tiles they begin in
};

class TileDeflater {
 public:
  void write(const float* tile, OutFile& out) {
    const bool is_empty =
        std::all_of(tile, tile + side * side, [](float v) { return v == no_data; });
    if (is_empty && !empty.empty()) {
      out.write(empty.data(), static_cast<std::int64_t>(empty.size()));
      return;
    }
    for (int row = 0; row < side; ++row) predict(tile + row * side, predicted + row * side * 4);
    const std::size_t size =
        libdeflate_zlib_compress(compressor, predicted, sizeof predicted, packed, sizeof packed);
    out.write(packed, static_cast<std::int64_t>(size));
    if (is_empty) empty.assign(packed, packed + size);
  }

 private:
  static void predict(const float* values, unsigned char* result) {
    unsigned char planes[4 * side + 1] = {};
    for (int i = 0; i < side; ++i) {
      const auto bits = std::bit_cast<std::uint32_t>(values[i]);
      for (int plane = 0; plane < 4; ++plane) {
        planes[1 + plane * side + i] = static_cast<unsigned char>(bits >> (24 - 8 * plane));
      }
    }
    for (int i = 0; i < 4 * side; ++i) {
      result[i] = static_cast<unsigned char>(planes[i + 1] - planes[i]);
    }
  }

  libdeflate_compressor* compressor = libdeflate_alloc_compressor(4);
  std::vector<unsigned char> empty;  // the tile without a value, deflated
  unsigned char predicted[side * side * 4];
  unsigned char packed[side * side * 4 + 4096];
};

struct GridOptions {
  bool all_are_wet = false;
  bool deflates = false;
};

void grid(char** arguments, const GridOptions& options) {
  const DatFile results(arguments[1]);
  FullMesh mesh(results.nodes, results.cells);
  take_lines(arguments[0], mesh);
  Drawing drawing(mesh, std::atof(arguments[2]));
  auto* const status = make_array<std::int8_t>(results.cells);
  auto* const values = make_array<float>(results.nodes);
  OutFile out(arguments[3], options.deflates ? 1 : drawing.plane_size());
  TileDeflater deflater;
  for (std::int64_t step = 0; step < results.times; ++step) {
    if (std::fabs(results.time(step)) > 99998) continue;
    results.read_statuses(step, status);
    if (options.all_are_wet) std::fill(status, status + results.cells, std::int8_t{1});
    results.read_values(step, 0, results.nodes, values);
    drawing.draw(status, values, [&](const float* tile) {
      if (options.deflates) {
        deflater.write(tile, out);
      } else {
        out.write(tile, side * side * std::int64_t{sizeof(float)});
      }
    });
  }
  out.close();
}

void read_all(const char* mesh_name, const char* name) {
  const DatFile results(name);
  FullMesh mesh(results.nodes, results.cells);
  take_lines(mesh_name, mesh);
  auto* const values = make_array<float>(results.nodes * results.components);
  auto* const status = make_array<std::int8_t>(results.cells);
  for (std::int64_t step = 0; step < results.times; ++step) {
    results.read_statuses(step, status);
    results.read_values(step, 0, results.nodes, values);
  }
}

}  // namespace
}  // namespace quillet_floor

int main(int count, char** arguments) {
  using namespace quillet_floor;
  const std::string_view mode = count > 1 ? arguments[1] : "";
  if (mode == "grid" && count >= 6) {
    GridOptions options;
    for (int i = 6; i < count; ++i) {
      const std::string_view option = arguments[i];
      options.all_are_wet = options.all_are_wet || option == "all";
      options.deflates = options.deflates || option == "deflate";
    }
    grid(arguments + 2, options);
  } else if (mode == "read" && count == 4) {
    read_all(arguments[2], arguments[3]);
  } else {
    std::fputs(
        "floor_raster grid MESH.2dm FILE.dat CELL OUTPUT [all] [deflate]\n"
        "floor_raster read MESH.2dm FILE.dat\n",
        stderr);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
