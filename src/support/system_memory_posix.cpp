#include <cstdlib>

#include "support/system_memory.h"

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace quillet {

void* ALIGNED_MEMORY(std::size_t alignment, std::size_t size) {
  return std::aligned_alloc(alignment, size);
}

void FREE_ALIGNED_MEMORY(void* memory) {
  std::free(memory);
}

void PREFER_LARGE_PAGES([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
  ::madvise(memory, size, MADV_HUGEPAGE);
#endif
}

// The C library looks as it goes, and ends the process.
bool HEAP_IS_SOUND() {
  return true;
}

}  // namespace quillet
