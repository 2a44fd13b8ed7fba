#include "xf/xf_inflater.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "support/kernel.h"

namespace quillet {
namespace {

// Shuffled: first every element's lowest byte, then every element's second byte, and so on.
KERNEL_LOOP void unshuffle_4(const unsigned char* planes, std::size_t count,
                             std::uint32_t* elements) {
#pragma omp simd
  for (std::size_t i = 0; i < count; ++i) {
    elements[i] = std::uint32_t{planes[i]} | std::uint32_t{planes[count + i]} << 8U |
                  std::uint32_t{planes[2 * count + i]} << 16U |
                  std::uint32_t{planes[3 * count + i]} << 24U;
  }
}

void unshuffle(const std::byte* planes, std::size_t size, std::size_t count, std::byte* elements) {
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t plane = 0; plane < size; ++plane) {
      elements[i * size + plane] = planes[plane * count + i];
    }
  }
}

// Fletcher's checksum of pairs of bytes; the odd last byte is half a pair. The sums are taken
// together before they overflow.
std::uint32_t checksum_of(const unsigned char* bytes, std::size_t size) {
  constexpr std::size_t pairs_at_once = 360;
  const auto fold = [](std::uint32_t sum) { return (sum & 0xFFFFU) + (sum >> 16U); };
  std::uint32_t first = 0;
  std::uint32_t second = 0;
  const std::size_t pairs = size / 2;
  for (std::size_t done = 0; done < pairs;) {
    const std::size_t end = std::min(pairs, done + pairs_at_once);
    for (; done < end; ++done) {
      first += std::uint32_t{bytes[2 * done]} << 8U | bytes[2 * done + 1];
      second += first;
    }
    first = fold(first);
    second = fold(second);
  }
  if (size % 2 != 0) {
    first += std::uint32_t{bytes[size - 1]} << 8U;
    second += first;
    first = fold(first);
    second = fold(second);
  }
  return fold(second) << 16U | fold(first);
}

// As it is stored; some early releases of HDF5 swapped the bytes of either half.
bool checksum_holds(const unsigned char* bytes, std::size_t size) {
  const unsigned char* const end = bytes + size;
  const std::uint32_t stored = std::uint32_t{end[0]} | std::uint32_t{end[1]} << 8U |
                               std::uint32_t{end[2]} << 16U | std::uint32_t{end[3]} << 24U;
  const std::uint32_t sum = checksum_of(bytes, size);
  return sum == stored || ((sum & 0x00FF00FFU) << 8U | (sum & 0xFF00FF00U) >> 8U) == stored;
}

}  // namespace

XfStatus XfInflater::inflate(const XfChunkForm& form, const std::byte* stored, std::size_t size,
                             std::uint32_t skipped_filters, std::byte* chunk) {
  const std::uint32_t shuffle_bit = form.shuffled ? 1U : 0U;
  const std::uint32_t deflate_bit = form.shuffled ? 2U : 1U;
  const std::uint32_t checksum_bit = deflate_bit << 1U;
  if (form.has_checksum && (skipped_filters & checksum_bit) == 0) {
    constexpr std::size_t checksum_size = 4;
    if (size < checksum_size) return XF_FAILURE("has a damaged size");
    size -= checksum_size;
    if (!checksum_holds(reinterpret_cast<const unsigned char*>(stored), size)) {
      return XF_FAILURE("has damaged compressed bytes");
    }
  }
  const bool planes = form.shuffled && (skipped_filters & shuffle_bit) == 0;
  std::byte* const target = planes ? shuffled.room(form.bytes) : chunk;
  if ((skipped_filters & deflate_bit) != 0) {
    if (size != form.bytes) return XF_FAILURE("has a damaged size");
    std::memcpy(target, stored, size);
  } else {
    XfStatus status = inflate_bytes(stored, size, target, form.bytes);
    if (!status.ok()) return status;
  }
  if (planes && form.element_size == 4) {
    Kernel<unshuffle_4>::run(reinterpret_cast<const unsigned char*>(target), form.bytes / 4,
                             reinterpret_cast<std::uint32_t*>(chunk));
  } else if (planes) {
    unshuffle(target, form.element_size, form.bytes / form.element_size, chunk);
  }
  return {};
}

XfStatus XfInflater::inflate_bytes(const std::byte* stored, std::size_t size, std::byte* chunk,
                                   std::size_t chunk_bytes) {
  if (!decompressor) decompressor.reset(libdeflate_alloc_decompressor());
  if (!decompressor) throw std::bad_alloc();
  // Without a place for the actual size, libdeflate insists on exactly chunk_bytes.
  const libdeflate_result result =
      libdeflate_zlib_decompress(decompressor.get(), stored, size, chunk, chunk_bytes, nullptr);
  return result == LIBDEFLATE_SUCCESS ? XfStatus{} : XF_FAILURE("has damaged compressed bytes");
}

}  // namespace quillet
