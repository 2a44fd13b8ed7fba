#include "flood_mesh.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "flood_terrain.h"

namespace quillet::example {
namespace {

// Places of nodes: with 9-node cells every second place in each direction is a corner.
struct GRID_TYPE {
  int cell_rows;
  int cell_columns;
  int step;  // places from corner to corner

  int rows() const { return cell_rows * step + 1; }
  int columns() const { return cell_columns * step + 1; }
  std::int32_t place(int row, int column) const { return row * columns() + column; }
};

// Square cells. A sixth of the 9-node cells has no centre node, hence 4 - 1/6 nodes per cell.
GRID_TYPE choose_grid(int node_target, bool quad9) {
  const double corners = quad9 ? node_target / (4.0 - 1.0 / 6.0) : node_target;
  const double across = std::round(std::sqrt(corners * valley_width / valley_length));
  const double along = std::round(corners / across);
  return {static_cast<int>(along) - 1, static_cast<int>(across) - 1, quad9 ? 2 : 1};
}

// No two split cells are neighbours. They outnumber the nodes of two edges from 1000 nodes on, so
// a mesh without mid-sides has more cells than nodes and never as many, which would make its
// results look like those of a finite-volume run.
bool is_split(int row, int column) {
  return (row + 2 * column) % 6 == 0;
}

void add_cell(const GRID_TYPE& grid, int row, int column, std::vector<MESH_CELL_TYPE>& cells) {
  const int i = row * grid.step;
  const int j = column * grid.step;
  const int end_i = i + grid.step;
  const int end_j = j + grid.step;
  const std::int32_t a = grid.place(i, j);
  const std::int32_t b = grid.place(end_i, j);
  const std::int32_t c = grid.place(end_i, end_j);
  const std::int32_t d = grid.place(i, end_j);
  if (!is_split(row, column)) {
    MESH_CELL_TYPE cell = {4, {a, b, c, d}, row, column, false, false};
    if (grid.step == 2) {
      cell.kind = 9;
      cell.nodes = {a,
                    b,
                    c,
                    d,
                    grid.place(i + 1, j),
                    grid.place(end_i, j + 1),
                    grid.place(i + 1, end_j),
                    grid.place(i, j + 1),
                    grid.place(i + 1, j + 1)};
    }
    cells.push_back(cell);
  } else if (column % 2 == 0) {
    cells.push_back({3, {a, c, d}, row, column, false, false});
    cells.push_back({3, {a, b, c}, row, column, true, false});
  } else {
    cells.push_back({3, {a, b, d}, row, column, false, false});
    cells.push_back({3, {b, c, d}, row, column, true, false});
  }
}

std::vector<char> used_places(const GRID_TYPE& grid, const std::vector<MESH_CELL_TYPE>& cells) {
  std::vector<char> used(static_cast<std::size_t>(grid.rows()) * grid.columns(), 0);
  for (const MESH_CELL_TYPE& cell : cells) {
    for (int k = 0; k < cell.kind; ++k) used[cell.nodes[k]] = 1;
  }
  return used;
}

void add_node(const GRID_TYPE& grid, int row, int column, FLOOD_MESH_TYPE& mesh) {
  constexpr double turn = 2.0 * std::numbers::pi;
  const double s = valley_length * row / (grid.rows() - 1);
  const double n = valley_width * (static_cast<double>(column) / (grid.columns() - 1) - 0.5);
  const double across = 2.0 * n / valley_width;
  mesh.s.push_back(s + 12.0 * std::sin(turn * n / valley_width));
  mesh.n.push_back(n + 10.0 * std::sin(turn * s / 750.0) * (1.0 - across * across));
}

// Numbers the places that some cell uses and gives the number of each place.
std::vector<std::int32_t> add_nodes(const GRID_TYPE& grid, FLOOD_MESH_TYPE& mesh) {
  const std::vector<char> used = used_places(grid, mesh.cells);
  std::vector<std::int32_t> numbers(used.size(), -1);
  mesh.s.reserve(used.size());
  mesh.n.reserve(used.size());
  for (int row = 0; row < grid.rows(); ++row) {
    for (int column = 0; column < grid.columns(); ++column) {
      const std::int32_t place = grid.place(row, column);
      if (!used[place]) continue;
      numbers[place] = static_cast<std::int32_t>(mesh.s.size());
      add_node(grid, row, column, mesh);
    }
  }
  const auto count_row = [&](int row) {
    const auto begin = used.begin() + grid.place(row, 0);
    return static_cast<int>(std::count(begin, begin + grid.columns(), 1));
  };
  mesh.first_row_nodes = count_row(0);
  mesh.last_row_nodes = count_row(grid.rows() - 1);
  return numbers;
}

bool lies_in_channel(const FLOOD_MESH_TYPE& mesh, const MESH_CELL_TYPE& cell) {
  double s = 0.0;
  double n = 0.0;
  for (int k = 0; k < cell.corners(); ++k) {
    s += mesh.s[cell.nodes[k]] / cell.corners();
    n += mesh.n[cell.nodes[k]] / cell.corners();
  }
  return channel_share(channel_distance(s, n)) > 0.5;
}

}  // namespace

FLOOD_MESH_TYPE make_mesh(int node_target, bool quad9) {
  const GRID_TYPE grid = choose_grid(node_target, quad9);
  FLOOD_MESH_TYPE mesh = {};
  mesh.row_spacing = valley_length / grid.cell_rows;
  mesh.column_spacing = valley_width / grid.cell_columns;
  mesh.cells.reserve(static_cast<std::size_t>(grid.cell_rows) * grid.cell_columns * 6 / 5);
  for (int row = 0; row < grid.cell_rows; ++row) {
    for (int column = 0; column < grid.cell_columns; ++column) {
      add_cell(grid, row, column, mesh.cells);
    }
  }
  const std::vector<std::int32_t> numbers = add_nodes(grid, mesh);
  for (MESH_CELL_TYPE& cell : mesh.cells) {
    for (int k = 0; k < cell.kind; ++k) cell.nodes[k] = numbers[cell.nodes[k]];
    cell.in_channel = lies_in_channel(mesh, cell);
  }
  return mesh;
}

std::vector<float> bed_elevations(const FLOOD_MESH_TYPE& mesh, double levee_raise) {
  std::vector<float> bed(mesh.s.size());
  for (std::size_t i = 0; i < bed.size(); ++i) {
    const double z = bed_elevation(mesh.s[i], mesh.n[i], levee_raise);
    bed[i] = static_cast<float>(std::round(z * 1.0e4) / 1.0e4);
  }
  return bed;
}

}  // namespace quillet::example
