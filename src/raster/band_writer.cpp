#include "raster/band_writer.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "raster/raster_grid.h"
#include "support/console.h"

namespace quillet {
namespace {

// Enough that no thread waits while a block is written.
constexpr std::int64_t most_under_way = 16;

// A smaller raster is done before helpers are there.
constexpr std::int64_t least_for_helpers = 8;

}  // namespace

BandWriter::BandWriter(const PartRasteriser& part_rasteriser, RasterSink& raster_sink) try
    : rasteriser(part_rasteriser), sink(raster_sink) {
  const std::int64_t blocks = rasteriser.block_count();
  const bool has_help = WORK_CREW().has_helpers() && blocks >= least_for_helpers;
  under_way = std::vector<Block>(has_help ? std::min(blocks, most_under_way) : 1);
  for (Block& block : under_way) {
    block.cells.resize(static_cast<std::size_t>(sink.block_size().cells()));
    block.packer = sink.make_packer();
  }
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

void BandWriter::write(const std::string& name, const MeshValues& values) {
  sink.begin_band(name);
  const std::int64_t blocks = rasteriser.block_count();
  const std::int64_t ahead = std::ssize(under_way);
  for (std::int64_t number = 0; number < blocks + ahead; ++number) {
    Block& block = under_way[static_cast<std::size_t>(number % ahead)];
    if (number >= ahead) {
      block.job.finish();
      sink.write(block.packer->bytes());
    }
    if (number >= blocks) continue;
    if (ahead == 1) {
      make(number, values, block);
    } else {
      block.job.start([this, number, values, &block] { make(number, values, block); });
    }
  }
}

void BandWriter::make(std::int64_t number, const MeshValues& values, Block& block) const {
  if (!rasteriser.draw(values, number, block.cells.data())) {
    block.packer->pack_no_data(number);
    return;
  }
  for (float& cell : block.cells) cell = std::isfinite(cell) ? cell : raster_no_data;
  block.packer->pack(number, block.cells.data());
}

}  // namespace quillet
