#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "mesh/part_mesh.h"
#include "points/csv_rows.h"
#include "points/point_location.h"
#include "raster/part_rasteriser.h"
#include "raster/raster_grid.h"

namespace quillet {
namespace {

using Elements = std::vector<std::vector<int>>;  // node ids: corners, mid-sides, centre

MESH_GEOMETRY_TYPE make_mesh(const std::vector<MapPoint>& nodes, const Elements& elements) {
  MESH_GEOMETRY_TYPE mesh;
  mesh.x.grow(nodes.size());
  mesh.y.grow(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const MapPoint& place = nodes[i];
    mesh.x[i] = place.x;
    mesh.y[i] = place.y;
    mesh.x_minimum = std::min(mesh.x_minimum, place.x);
    mesh.x_maximum = std::max(mesh.x_maximum, place.x);
    mesh.y_minimum = std::min(mesh.y_minimum, place.y);
    mesh.y_maximum = std::max(mesh.y_maximum, place.y);
  }
  mesh.corners.grow(elements.size());
  mesh.inner_nodes.grow(elements.size());
  for (std::size_t i = 0; i < elements.size(); ++i) {
    const std::vector<int>& ids = elements[i];
    const auto corners_end = ids.begin() + std::min<std::ptrdiff_t>(std::ssize(ids), 4);
    std::copy(ids.begin(), corners_end, mesh.corners[i].begin());
    std::copy(corners_end, ids.end(), mesh.inner_nodes[i].begin());
    if (ids.size() == 9) ++mesh.quad9_count;
  }
  mesh.node_count = static_cast<std::int32_t>(nodes.size());
  mesh.element_count = static_cast<std::int32_t>(elements.size());
  return mesh;
}

struct Scene {
  std::vector<MapPoint> nodes;
  Elements elements;
  std::vector<float> values;          // per node, or per element
  std::vector<std::int8_t> status{};  // none: all wet
  bool take_nearest = false;

  MeshValues mesh_values() const {
    return {.value = values.data(),
            .status = status.empty() ? nullptr : status.data(),
            .per_element = values.size() != nodes.size(),
            .take_nearest = take_nearest};
  }
};

// The raster row by row, no data as -9999. The size of blocks must not show in it.
std::vector<float> raster_of(const Scene& scene, double cell_size, const BlockSize& size,
                             RasterGrid* whole = nullptr) {
  PartMesh mesh = MAKE_PART_MESH(make_mesh(scene.nodes, scene.elements));
  const RasterGrid grid = GRID_AROUND(mesh, cell_size, "");
  const double tolerance = mesh.edge_tolerance() / cell_size;
  PLACE_IN_GRID(grid, mesh);
  const PartRasteriser rasteriser(std::move(mesh), grid, tolerance, size);
  std::vector<float> cells;
  const BlockCounts counts(grid.rows, grid.columns, size);
  std::vector<std::vector<float>> blocks;
  for (std::int64_t block = 0; block < counts.total(); ++block) {
    blocks.emplace_back(static_cast<std::size_t>(size.cells()), raster_no_data);
    const bool is_drawn = rasteriser.draw(scene.mesh_values(), block, blocks.back().data());
    const auto is_value = [](float cell) { return cell != raster_no_data; };
    EXPECT_TRUE(is_drawn || std::none_of(blocks.back().begin(), blocks.back().end(), is_value));
  }
  for (int row = 0; row < grid.rows; ++row) {
    for (int column = 0; column < grid.columns; ++column) {
      const auto& block =
          blocks[static_cast<std::size_t>(row / size.rows * counts.across + column / size.columns)];
      const int cell = row % size.rows * size.columns + column % size.columns;
      cells.push_back(block[static_cast<std::size_t>(cell)]);
    }
  }
  if (whole != nullptr) *whole = grid;
  return cells;
}

float value_at(const Scene& scene, const MapPoint& point) {
  const PartMesh mesh = MAKE_PART_MESH(make_mesh(scene.nodes, scene.elements));
  const std::vector<MapPoint> points{point};
  const auto places = LOCATE_POINTS(mesh, points);
  return VALUE_AT(places.front(), scene.mesh_values()).value_or(raster_no_data);
}

// ---- By hand ----

constexpr float none = raster_no_data;

TEST(Raster, triangle_is_linear_between_its_corners) {
  // Value x + 10 y; centres at 0.5, 1.5, ...; those on the long edge belong to the triangle.
  const Scene scene{{{0, 0}, {4, 0}, {0, 4}}, {{1, 2, 3}}, {0, 4, 40}};
  EXPECT_EQ(raster_of(scene, 1, {2, 3}), (std::vector<float>{35.5F, none, none, none,    //
                                                             25.5F, 26.5F, none, none,   //
                                                             15.5F, 16.5F, 17.5F, none,  //
                                                             5.5F, 6.5F, 7.5F, 8.5F}));
}

TEST(Raster, edges_of_the_grid_are_multiples_of_the_cell_size) {
  RasterGrid grid;
  raster_of({{{10.4, -3.2}, {12.1, -3.2}, {10.4, -0.1}}, {{1, 2, 3}}, {0, 0, 0}}, 0.5, {8, 8},
            &grid);
  EXPECT_EQ(grid.left, 10);
  EXPECT_EQ(grid.top, 0);
  EXPECT_EQ(grid.columns, 5);
  EXPECT_EQ(grid.rows, 7);
  EXPECT_EQ(grid.bottom(), -3.5);
}

TEST(Raster, decimal_edges_need_no_further_cells) {
  RasterGrid grid;
  raster_of({{{0.3, 0.6}, {0.7, 0.6}, {0.7, 0.9}, {0.3, 0.9}}, {{1, 2, 3, 4}}, {1, 1, 1, 1}}, 0.1,
            {8, 8}, &grid);
  EXPECT_EQ(grid.columns, 4);
  EXPECT_EQ(grid.rows, 3);
}

TEST(Raster, dry_elements_hold_no_data_and_edges_belong_to_wet_ones) {
  // Centres at x = 1.5 lie on the edge of the two squares.
  const std::vector<MapPoint> nodes{{0, 0}, {1.5, 0}, {3, 0}, {0, 1}, {1.5, 1}, {3, 1}};
  const Elements squares{{1, 2, 5, 4}, {2, 3, 6, 5}};
  EXPECT_EQ(raster_of({nodes, squares, {7, 9}, {1, 0}}, 1, {1, 2}),
            (std::vector<float>{7, 7, none}));
  EXPECT_EQ(raster_of({nodes, squares, {7, 9}, {0, 1}}, 1, {1, 2}),
            (std::vector<float>{none, 9, 9}));
  EXPECT_EQ(raster_of({nodes, squares, {7, 9}, {1, 1}}, 1, {1, 2}), (std::vector<float>{7, 7, 9}));
  EXPECT_EQ(raster_of({nodes, squares, {7, 9}, {-1, 2}}, 1, {1, 2}),
            (std::vector<float>{none, none, none}));
}

TEST(Raster, codes_are_not_interpolated) {
  const std::vector<MapPoint> nodes{{0, 0}, {4, 0}, {4, 2}, {0, 2}};
  const Elements square{{1, 2, 3, 4}};
  for (const float code : {99.0F, -99.0F, -99999.0F}) {
    EXPECT_EQ(raster_of({nodes, square, {1, code, 3, 2}}, 1, {2, 8}),
              (std::vector<float>{2, 2, 3, 3, 1, 1, code, code}));
  }
  EXPECT_EQ(raster_of({nodes, square, {170, -170, -170, 170}, {}, true}, 1, {2, 1}),
            (std::vector<float>{170, 170, -170, -170, 170, 170, -170, -170}));
}

TEST(Raster, nine_node_element_is_four_around_its_centre) {
  // 1 at the centre, 0 elsewhere: a pyramid, bilinear in each quarter.
  const Scene scene{{{0, 0}, {4, 0}, {4, 4}, {0, 4}, {2, 0}, {4, 2}, {2, 4}, {0, 2}, {2, 2}},
                    {{1, 2, 3, 4, 5, 6, 7, 8, 9}},
                    {0, 0, 0, 0, 0, 0, 0, 0, 1}};
  const float a = 0.0625F;
  const float b = 0.1875F;
  const float c = 0.5625F;
  EXPECT_EQ(raster_of(scene, 1, {3, 3}),
            (std::vector<float>{a, b, b, a, b, c, c, b, b, c, c, b, a, b, b, a}));
}

TEST(Raster, re_entrant_quadrilateral_is_two_triangles) {
  // An arrowhead that points east; its notch is at (2, 2).
  const Scene scene{{{0, 0}, {4, 2}, {0, 4}, {2, 2}}, {{1, 2, 3, 4}}, {5, 5, 5, 5}};
  EXPECT_EQ(raster_of(scene, 1, {4, 1}), (std::vector<float>{5, none, none, none,  //
                                                             none, 5, 5, none,     //
                                                             none, 5, 5, none,     //
                                                             5, none, none, none}));
}

// ---- Against a naive search ----

// A patch of triangles and quadrilaterals, warped, of either sense of rotation, some of them dry.
Scene random_scene(unsigned seed, double origin) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> shift(-0.28, 0.28);
  std::uniform_real_distribution<float> value(-5, 5);
  constexpr int side = 9;
  Scene scene;
  for (int row = 0; row < side; ++row) {
    for (int column = 0; column < side; ++column) {
      scene.nodes.push_back(
          {origin + 7 * (column + shift(random)), 2 * origin + 5 * (row + shift(random))});
      scene.values.push_back(value(random));
    }
  }
  for (int row = 0; row + 1 < side; ++row) {
    for (int column = 0; column + 1 < side; ++column) {
      const int a = row * side + column + 1;
      const int b = a + 1;
      const int c = a + side + 1;
      const int d = a + side;
      if (random() % 3 == 0) {
        scene.elements.push_back({a, b, c});
        scene.elements.push_back({a, d, c});
      } else if (random() % 2 == 0) {
        scene.elements.push_back({a, b, c, d});
      } else {
        scene.elements.push_back({d, c, b, a});
      }
    }
  }
  for (std::size_t i = 0; i < scene.elements.size(); ++i) {
    scene.status.push_back(random() % 4 != 0 ? 1 : 0);
  }
  return scene;
}

struct Found {
  double value = 0;
  double margin = 0;  // how far inside, in element units; negative outside
};

// Newton's way from a point to its place in a quadrilateral.
Found in_quad(const std::vector<MapPoint>& corner, const std::vector<float>& value,
              const MapPoint& point) {
  double s = 0.5;
  double t = 0.5;
  MapPoint rest;
  for (int i = 0; i < 60; ++i) {
    const MapPoint at = (1 - s) * (1 - t) * corner[0] + s * (1 - t) * corner[1] +
                        s * t * corner[2] + (1 - s) * t * corner[3];
    const MapPoint ds = (1 - t) * (corner[1] - corner[0]) + t * (corner[2] - corner[3]);
    const MapPoint dt = (1 - s) * (corner[3] - corner[0]) + s * (corner[2] - corner[1]);
    rest = point - at;
    const double area = CROSS(ds, dt);
    s += CROSS(rest, dt) / area;
    t += CROSS(ds, rest) / area;
  }
  const bool is_found = std::fabs(rest.x) + std::fabs(rest.y) < 1e-6;
  const double margin = is_found ? std::min({s, 1 - s, t, 1 - t}) : -1;
  return {(1 - s) * (1 - t) * value[0] + s * (1 - t) * value[1] + s * t * value[2] +
              (1 - s) * t * value[3],
          margin};
}

Found in_triangle(const std::vector<MapPoint>& corner, const std::vector<float>& value,
                  const MapPoint& point) {
  const double area = CROSS(corner[1] - corner[0], corner[2] - corner[0]);
  const double of_0 = CROSS(corner[1] - point, corner[2] - point) / area;
  const double of_1 = CROSS(corner[2] - point, corner[0] - point) / area;
  const double of_2 = CROSS(corner[0] - point, corner[1] - point) / area;
  return {of_0 * value[0] + of_1 * value[1] + of_2 * value[2], std::min({of_0, of_1, of_2})};
}

// Nothing where the point is too near to an edge for the choice of the element to be clear.
std::optional<double> naive_value(const Scene& scene, const MapPoint& point) {
  double result = none;
  for (std::size_t i = 0; i < scene.elements.size(); ++i) {
    std::vector<MapPoint> corner;
    std::vector<float> value;
    for (const int id : scene.elements[i]) {
      corner.push_back(scene.nodes[static_cast<std::size_t>(id) - 1]);
      value.push_back(scene.values[static_cast<std::size_t>(id) - 1]);
    }
    const Found found =
        corner.size() == 3 ? in_triangle(corner, value, point) : in_quad(corner, value, point);
    if (std::fabs(found.margin) < 1e-6) return std::nullopt;
    if (found.margin > 0) result = scene.status[i] == 1 ? found.value : none;
  }
  return result;
}

class RandomMesh : public ::testing::TestWithParam<unsigned> {};

TEST_P(RandomMesh, every_cell_has_the_value_that_a_naive_search_finds) {
  const Scene scene = random_scene(GetParam(), GetParam() % 2 == 0 ? 0 : 3.1e5);
  RasterGrid grid;
  const std::vector<float> cells = raster_of(scene, 0.7, {16, 16}, &grid);
  int compared = 0;
  for (int row = 0; row < grid.rows; ++row) {
    for (int column = 0; column < grid.columns; ++column) {
      const MapPoint centre{grid.left + (column + 0.5) * grid.cell_size,
                            grid.top - (row + 0.5) * grid.cell_size};
      const std::optional<double> expected = naive_value(scene, centre);
      if (!expected) continue;
      ++compared;
      ASSERT_NEAR(cells[static_cast<std::size_t>(row) * grid.columns + column], *expected, 1e-5)
          << row << ' ' << column;
      if (compared % 50 == 0) {
        ASSERT_NEAR(value_at(scene, centre), *expected, 1e-5);
      }
    }
  }
  EXPECT_GT(compared, 3000);
}

TEST_P(RandomMesh, blocks_do_not_show) {
  const Scene scene = random_scene(GetParam(), 100);
  const std::vector<float> whole = raster_of(scene, 0.45, {1000, 1000});
  for (const BlockSize size : {BlockSize{1, 1000}, BlockSize{7, 5}, BlockSize{64, 1}}) {
    EXPECT_EQ(raster_of(scene, 0.45, size), whole) << size.rows;
  }
}

TEST_P(RandomMesh, no_cell_inside_is_left_out) {
  Scene scene = random_scene(GetParam(), 1e6);
  scene.status.clear();
  for (MapPoint& node : scene.nodes) {  // many centres on edges and nodes
    node.x = std::round(node.x * 2) / 2;
    node.y = std::round(node.y * 2) / 2;
  }
  RasterGrid grid;
  const std::vector<float> cells = raster_of(scene, 1, {16, 16}, &grid);
  for (int row = 6; row < grid.rows - 6; ++row) {
    for (int column = 6; column < grid.columns - 6; ++column) {
      EXPECT_NE(cells[static_cast<std::size_t>(row) * grid.columns + column], none);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomMesh, ::testing::Range(0U, 6U));

// ---- CSV ----

std::vector<CsvRow> rows_of(const std::string& text) {
  CsvReader reader(text);
  std::vector<CsvRow> rows;
  for (CsvRow row; reader.next(row);) rows.push_back(row);
  return rows;
}

TEST(CsvRows, forms) {
  using Rows = std::vector<CsvRow>;
  EXPECT_EQ(rows_of("\xEF\xBB\xBFname,x\r\na, 1 \r\n"), (Rows{{"name", "x"}, {"a", "1"}}));
  EXPECT_EQ(rows_of("\"a, \"\"b\"\"\",2"), (Rows{{"a, \"b\"", "2"}}));
  EXPECT_EQ(rows_of("a\n\n ,\n,,\n"), (Rows{{"a"}, {"", ""}, {"", "", ""}}));
  EXPECT_EQ(rows_of("\"two\nlines\",1\n"), (Rows{{"two\nlines", "1"}}));
  EXPECT_EQ(rows_of("\"open,1\nb"), (Rows{{"open,1\nb"}}));
  EXPECT_EQ(rows_of(""), Rows{});
}

TEST(CsvRows, fields_read_back) {
  for (const std::string text : {"a", "a,b", "a \"b\"", " a", "a\nb", ""}) {
    const auto rows = rows_of("x," + CSV_FIELD(text) + ",y");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0][1], text);
  }
}

}  // namespace
}  // namespace quillet
