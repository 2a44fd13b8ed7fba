// A tile of a GeoTIFF as it stands in the file: deflated after the floating-point predictor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct libdeflate_compressor;

namespace quillet {

constexpr std::int32_t tile_side = 256;  // cells
constexpr std::size_t tile_bytes = std::size_t{tile_side} * tile_side * sizeof(float);

class TilePacker {
 public:
  // Ends the run when memory does not suffice.
  TilePacker();

  // Packs a tile whose rows stand `stride` cells apart. The bytes stay until the next call.
  void pack(const float* cells, std::int64_t stride);

  char* data() { return packed.data(); }
  std::size_t size() const { return packed_size; }

 private:
  struct Deleter {
    void operator()(libdeflate_compressor* compressor) const;
  };

  std::unique_ptr<libdeflate_compressor, Deleter> compressor;
  std::vector<unsigned char> predicted;
  std::vector<char> packed;
  std::size_t packed_size = 0;
};

}  // namespace quillet
