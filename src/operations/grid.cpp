#include "operations/grid.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "raster/ascii_grid_sink.h"
#include "raster/geotiff_sink.h"
#include "raster/part_rasteriser.h"
#include "raster/raster_grid.h"
#include "results/written_values.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/numbers.h"
#include "support/text.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

bool is_ascii(const GridRequest& request) {
  return FILEEXT(request.output_name) == ".asc";
}

void check_times(const MeshMapJob& job, const GridRequest& request,
                 const std::vector<float>& times) {
  const std::string& input = job.inputs.sources.front()->name();
  if (times.empty()) FAIL_RUN("ERROR - No output times in " + QUOTED(input));
  if (times.size() > 1 && is_ascii(request)) {
    FAIL_RUN("ERROR - An .asc grid holds one output time, use -t.");
  }
}

std::unique_ptr<RasterSink> open_raster(const GridRequest& request,
                                        const RasterDescription& raster) {
  if (is_ascii(request)) return std::make_unique<AsciiGridSink>(request.output_name, raster);
  return std::make_unique<GeotiffSink>(request.output_name, raster);
}

// Draws one band after the other, a few rows at a time.
class GridWriter {
 public:
  GridWriter(const PartMesh& placed_mesh, const RasterGrid& raster_grid, double tolerance_in_cells,
             RasterSink& raster_sink)
      : grid(raster_grid),
        sink(raster_sink),
        rasteriser(placed_mesh, grid, tolerance_in_cells, sink.rows_at_a_time()) {
    SIZE_ARRAY(cells, sink.stride() * sink.rows_at_a_time());
  }

  void write_band(const std::string& name, const MeshValues& values) {
    sink.begin_band(name);
    rasteriser.rewind();
    for (std::int64_t row = 0; row < grid.rows; row += sink.rows_at_a_time()) {
      rasteriser.next_rows();
      std::fill(cells.begin(), cells.end(), raster_no_data);
      CellBlock block;
      block.first_row = static_cast<std::int32_t>(row);
      block.rows = std::min(sink.rows_at_a_time(), grid.rows - block.first_row);
      block.columns = grid.columns;
      block.stride = sink.stride();
      block.cells = cells.data();
      rasteriser.draw(values, block);
      take_out_what_is_no_number();
      sink.write_rows(cells.data(), block.rows);
    }
  }

 private:
  void take_out_what_is_no_number() {
    for (float& cell : cells) cell = std::isfinite(cell) ? cell : raster_no_data;
  }

  const RasterGrid grid;
  RasterSink& sink;
  PartRasteriser rasteriser;
  LargeArray<float> cells;
};

MeshValues scalars_of(const MeshMap& map, RES_TYPE& step) {
  NOTE_WRITTEN(step.time, step);
  if (step.is_vector) {
    VECTOR_MAGNITUDES(step.nd.x.data(), step.nd.y.data(), step.node_count, step.nd.x.data());
  }
  return map.values_of(step, step.nd.x);
}

}  // namespace

void RUN_GRID(const MeshMapJob& job, const GridRequest& request) {
  MeshMap map(job);
  check_times(job, request, map.times());
  const RasterGrid grid = GRID_AROUND(map.mesh(), request.cell_size, request.cell_size_text);
  SAY_APART(fmt::format("Writing raster of {} x {} cells and {} output times: {}", grid.columns,
                        grid.rows, map.times().size(), request.output_name));
  const double tolerance = map.mesh().edge_tolerance() / grid.cell_size;
  PLACE_IN_GRID(grid, map.mesh());
  const auto raster = open_raster(
      request,
      {.grid = grid, .bands = map.times().size(), .coordinate_system = request.coordinate_system});
  GridWriter writer(map.mesh(), grid, tolerance, *raster);
  map.read_each(
      [&](RES_TYPE& step) { writer.write_band(AREAL(step.time), scalars_of(map, step)); });
  SAY_APART("Closing files and exiting");
  SAY("");
  raster->close();
}

}  // namespace quillet
