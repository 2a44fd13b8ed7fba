#include "raster/raster_grid.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

// An edge of the mesh this near to one of the grid, in cells, is on it: 0.3 is three times 0.1.
constexpr double same_edge = 1e-6;

double edge_below(double cells) {
  const double nearest = std::round(cells);
  return std::fabs(cells - nearest) < same_edge ? nearest : std::floor(cells);
}

}  // namespace

RasterGrid GRID_AROUND(const PartMesh& mesh, double cell_size, const std::string& size_text) {
  const double first_column = edge_below(mesh.x_minimum / cell_size);
  const double first_row = edge_below(-mesh.y_maximum / cell_size);
  const double columns = -edge_below(-mesh.x_maximum / cell_size) - first_column;
  const double rows = -edge_below(mesh.y_minimum / cell_size) - first_row;
  constexpr double most = std::numeric_limits<std::int32_t>::max();
  if (!(columns <= most && rows <= most)) {
    FAIL_RUN("ERROR - Cells are too small, the raster would have more than 2147483647 a side: " +
             QUOTED(size_text));
  }
  RasterGrid grid;
  grid.cell_size = cell_size;
  grid.left = first_column * cell_size;
  grid.top = -first_row * cell_size;
  grid.columns = std::max(1, static_cast<std::int32_t>(columns));
  grid.rows = std::max(1, static_cast<std::int32_t>(rows));
  return grid;
}

void PLACE_IN_GRID(const RasterGrid& grid, PartMesh& mesh) {
  for (double& x : mesh.x) x = (x - grid.left) / grid.cell_size - 0.5;
  for (double& y : mesh.y) y = (y - grid.top) / grid.cell_size + 0.5;
}

}  // namespace quillet
