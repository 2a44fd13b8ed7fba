#include <malloc.h>

#include "support/system_memory.h"

namespace quillet {

void* ALIGNED_MEMORY(std::size_t alignment, std::size_t size) {
  return ::_aligned_malloc(size, alignment);
}

void FREE_ALIGNED_MEMORY(void* memory) {
  ::_aligned_free(memory);
}

void PREFER_LARGE_PAGES(void*, std::size_t) {}

}  // namespace quillet
