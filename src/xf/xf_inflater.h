// Brings one deflated chunk back to what was stored, from memory to memory.
#pragma once

#include <libdeflate.h>

#include <cstddef>
#include <cstdint>
#include <memory>

#include "xf/xf_buffer.h"
#include "xf/xf_status.h"

namespace quillet {

struct XfChunkForm {
  std::size_t bytes = 0;  // of the chunk as it was before the filters
  std::size_t element_size = 0;
  bool shuffled = false;      // before it was deflated
  bool has_checksum = false;  // behind the deflated bytes
};

// For one thread at a time.
class XfInflater {
 public:
  // `skipped_filters` has a bit for every filter that the writer left out for this chunk, in their
  // order. Fails when the bytes do not make exactly one chunk.
  XfStatus inflate(const XfChunkForm& form, const std::byte* stored, std::size_t size,
                   std::uint32_t skipped_filters, std::byte* chunk);

 private:
  struct FreeDecompressor {
    void operator()(libdeflate_decompressor* memory) const { libdeflate_free_decompressor(memory); }
  };

  XfStatus inflate_bytes(const std::byte* stored, std::size_t size, std::byte* chunk,
                         std::size_t chunk_bytes);

  std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decompressor;
  XfBuffer shuffled;  // one inflated chunk whose bytes are still in planes
};

}  // namespace quillet
