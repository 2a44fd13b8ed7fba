// Fills the bands of a raster file with the values on a mesh, helper threads taking part.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "mesh/mesh_values.h"
#include "raster/part_rasteriser.h"
#include "raster/raster_sink.h"
#include "support/large_array.h"
#include "support/work_crew.h"

namespace quillet {

class BandWriter {
 public:
  // Memory: some blocks of cells, and what their bytes take. All must stay. Ends the run when
  // memory does not suffice.
  BandWriter(const PartRasteriser& part_rasteriser, RasterSink& raster_sink);

  // Draws and writes the next band. A value that is not a number is no data.
  void write(const std::string& name, const MeshValues& values);

 private:
  // A block that is under way.
  struct Block {
    LargeArray<float> cells;
    std::unique_ptr<BlockPacker> packer;
    CrewJob job;  // last: it ends before what it works on
  };

  void make(std::int64_t number, const MeshValues& values, Block& block) const;

  const PartRasteriser& rasteriser;
  RasterSink& sink;
  std::vector<Block> under_way;
};

}  // namespace quillet
