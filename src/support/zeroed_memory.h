#pragma once

#include <cstddef>

namespace quillet {

struct ZeroedMemory {
  void* start = nullptr;
  void* block = nullptr;  // in which it lies
};

// Memory for `count` items that holds zeros as it comes from the system: nothing is touched. Large
// amounts are in large pages (see ALLOCATE_LARGE). Throws std::bad_alloc.
ZeroedMemory ALLOCATE_ZEROED(std::size_t count, std::size_t item_size);
void FREE_ZEROED(const ZeroedMemory& memory);

}  // namespace quillet
