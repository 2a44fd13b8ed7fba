// The cells of a raster on the map.
#pragma once

#include <cstdint>
#include <string>

#include "mesh/part_mesh.h"

namespace quillet {

// Cells without a value.
constexpr float raster_no_data = -9999.0F;

struct RasterGrid {
  double cell_size = 1;      // m
  double left = 0;           // of the first column, m; a multiple of the cell size
  double top = 0;            // of the first row
  std::int32_t columns = 1;  // from west to east
  std::int32_t rows = 1;     // from north to south

  double bottom() const { return top - rows * cell_size; }
};

// The smallest grid around the mesh whose edges are multiples of the cell size (greater than 0).
// Ends the run when it would have too many cells a side, showing the size as the user gave it.
RasterGrid GRID_AROUND(const PartMesh& mesh, double cell_size, const std::string& size_text);

// Turns the map coordinates of the mesh into places in the grid: the centre of the cell in column c
// and row r, both from 0, is (c, -r), so that y still grows towards the north.
void PLACE_IN_GRID(const RasterGrid& grid, PartMesh& mesh);

}  // namespace quillet
