#include "raster/tile_packer.h"

#include <libdeflate.h>

#include <array>
#include <bit>
#include <cstring>
#include <new>

#include "support/console.h"
#include "support/kernel.h"

namespace quillet {
namespace {

// Higher levels take twice the time for a few per cent.
constexpr int deflate_level = 4;

// The floating-point predictor takes the values of a row apart into bytes, the most significant
// ones of all values first, and replaces each byte by its difference from the one before.
KERNEL_LOOP void predict_row(const float* values, unsigned char* result) {
  std::array<unsigned char, 4 * tile_side + 1> bytes;
  bytes[0] = 0;
  unsigned char* const planes = &bytes[1];
  for (int i = 0; i < tile_side; ++i) {
    const auto bits = std::bit_cast<std::uint32_t>(values[i]);
    planes[i] = static_cast<unsigned char>(bits >> 24);
    planes[tile_side + i] = static_cast<unsigned char>(bits >> 16);
    planes[2 * tile_side + i] = static_cast<unsigned char>(bits >> 8);
    planes[3 * tile_side + i] = static_cast<unsigned char>(bits);
  }
  for (int i = 0; i < 4 * tile_side; ++i) {
    result[i] = static_cast<unsigned char>(bytes[i + 1] - bytes[i]);
  }
}

}  // namespace

void TilePacker::Deleter::operator()(libdeflate_compressor* target) const {
  libdeflate_free_compressor(target);
}

TilePacker::TilePacker() try : compressor(libdeflate_alloc_compressor(deflate_level)) {
  if (!compressor) throw std::bad_alloc();
  predicted.resize(tile_bytes);
  packed.resize(libdeflate_zlib_compress_bound(compressor.get(), tile_bytes));
  no_data.resize(packed.size());
  const std::vector<float> cells(tile_bytes / sizeof(float), raster_no_data);
  no_data.resize(deflate(cells.data(), no_data).size());
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

void TilePacker::pack(std::int64_t, const float* cells) {
  taken = deflate(cells, packed);
}

void TilePacker::pack_no_data(std::int64_t) {
  taken = {no_data.data(), no_data.size()};
}

std::string_view TilePacker::deflate(const float* cells, std::vector<char>& target) {
  constexpr std::size_t row_bytes = tile_side * sizeof(float);
  for (std::size_t row = 0; row < tile_side; ++row) {
    Kernel<predict_row>::run(cells + row * tile_side, &predicted[row * row_bytes]);
  }
  const std::size_t size = libdeflate_zlib_compress(compressor.get(), predicted.data(),
                                                    predicted.size(), target.data(), target.size());
  return {target.data(), size};
}

}  // namespace quillet
