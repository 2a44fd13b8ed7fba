// The value of every cell of a raster, found by drawing the mesh, part by part, over the rows.
#pragma once

#include <cstdint>
#include <vector>

#include "mesh/mesh_values.h"
#include "mesh/part_mesh.h"
#include "raster/raster_grid.h"

namespace quillet {

// Rows of the raster, or a stretch of them.
struct CellBlock {
  std::int32_t first_row = 0;
  std::int32_t rows = 0;
  std::int32_t first_column = 0;
  std::int32_t columns = 0;
  std::int64_t stride = 0;  // cells from one row to the next
  float* cells = nullptr;   // of the first row and column
};

// Draws a mesh that was placed in the grid (PLACE_IN_GRID) from the first row to the last, some
// rows at a time. A cell takes the value at its centre, or stays as it is where no wet part lies. A
// centre on an edge belongs to the element with the lowest id of those that are wet.
class PartRasteriser {
 public:
  // The mesh must stay. Ends the run when memory does not suffice.
  PartRasteriser(const PartMesh& placed_mesh, const RasterGrid& grid, double tolerance_in_cells,
                 std::int32_t rows_at_a_time);

  // Back to the first rows.
  void rewind();

  // Goes to the next rows: from `rows_at_a_time` times the number of earlier calls on.
  void next_rows();

  // Draws into cells of these rows.
  void draw(const MeshValues& values, const CellBlock& block) const;

 private:
  std::int32_t first_row_of(const MeshPart& part) const;
  std::int32_t last_row_of(const MeshPart& part) const;

  const PartMesh& mesh;
  double tolerance;
  std::int32_t last_row;
  std::int32_t block_rows;
  std::vector<std::int32_t> starts;  // per block of rows: where its first parts begin in `order`
  LargeArray<std::int32_t> order;    // parts by the block they begin in, then by falling id
  LargeArray<std::int32_t> active;   // those that reach into the present rows, by falling id
  LargeArray<std::int32_t> merged;   // the next ones while they are gathered
  std::int32_t block_number = -1;
};

}  // namespace quillet
