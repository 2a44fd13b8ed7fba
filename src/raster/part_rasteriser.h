// The value of every cell of a raster, found by drawing the mesh, part by part, into one block of
// cells after the other.
#pragma once

#include <cstdint>
#include <vector>

#include "mesh/mesh_values.h"
#include "mesh/part_mesh.h"
#include "raster/cell_block.h"
#include "raster/raster_grid.h"

namespace quillet {

// Draws a mesh that was placed in the grid (PLACE_IN_GRID). A cell takes the value at its centre,
// or raster_no_data where no wet part lies. A centre on an edge belongs to the element with the
// lowest id of those that are wet.
class PartRasteriser {
 public:
  // Sorts the parts into the blocks that they reach into, so that those of a block stand together
  // whatever order the mesh has. Ends the run when memory does not suffice.
  PartRasteriser(PartMesh placed_mesh, const RasterGrid& grid, double tolerance_in_cells,
                 const BlockSize& block_size);

  // Fills a block (by rows, from 0), whose rows stand one behind the other. Cells outside of the
  // raster hold no data. False, and nothing is touched, where nothing is wet. Any thread may draw.
  bool draw(const MeshValues& values, std::int64_t block, float* cells) const;

  std::int64_t block_count() const { return counts.total(); }

 private:
  // Blocks, both ends included; none where first > last.
  struct Blocks {
    std::int64_t first_row, last_row, first_column, last_column;
  };

  Blocks blocks_of(const MeshPart& part) const;
  template <typename Use>
  void for_each_block_of(const MeshPart& part, const Use& use) const;

  PartMesh mesh;  // its parts are among those below
  double tolerance;
  std::int32_t rows;
  std::int32_t columns;
  BlockSize size;
  BlockCounts counts;
  std::vector<std::int64_t> starts;  // per block, and one more: where its parts begin
  LargeArray<MeshPart> parts;        // by block, those of a block by falling id
};

}  // namespace quillet
