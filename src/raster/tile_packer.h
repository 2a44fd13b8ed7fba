// A tile of a GeoTIFF as it stands in the file: deflated after the floating-point predictor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "raster/raster_sink.h"

struct libdeflate_compressor;

namespace quillet {

constexpr std::int32_t tile_side = 256;  // cells
constexpr std::size_t tile_bytes = std::size_t{tile_side} * tile_side * sizeof(float);

class TilePacker : public BlockPacker {
 public:
  // Ends the run when memory does not suffice.
  TilePacker();

  void pack(std::int64_t block, const float* cells) override;
  void pack_no_data(std::int64_t block) override;
  std::string_view bytes() const override { return taken; }

 private:
  struct Deleter {
    void operator()(libdeflate_compressor* compressor) const;
  };

  std::string_view deflate(const float* cells, std::vector<char>& target);

  std::unique_ptr<libdeflate_compressor, Deleter> compressor;
  std::vector<unsigned char> predicted;
  std::vector<char> packed;
  std::vector<char> no_data;  // a tile of it, packed
  std::string_view taken;
};

}  // namespace quillet
