#include "operations/grid.h"

#include <fmt/format.h>

#include <memory>
#include <utility>
#include <vector>

#include "raster/ascii_grid_sink.h"
#include "raster/band_writer.h"
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
  const PartRasteriser rasteriser(std::move(map.mesh()), grid, tolerance, raster->block_size());
  BandWriter writer(rasteriser, *raster);
  map.read_each([&](RES_TYPE& step) { writer.write(AREAL(step.time), scalars_of(map, step)); });
  SAY_APART("Closing files and exiting");
  SAY("");
  raster->close();
}

}  // namespace quillet
