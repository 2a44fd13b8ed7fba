#include <windows.h>
// windows.h comes first: the others need its types.
#include <malloc.h>

#include <algorithm>
#include <array>

#include "support/system_memory.h"

namespace quillet {

void* ALIGNED_MEMORY(std::size_t alignment, std::size_t size) {
  return ::_aligned_malloc(size, alignment);
}

void FREE_ALIGNED_MEMORY(void* memory) {
  ::_aligned_free(memory);
}

void PREFER_LARGE_PAGES(void*, std::size_t) {}

bool HEAP_IS_SOUND() {
  std::array<HANDLE, 64> heaps{};
  const DWORD found = ::GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  const std::size_t count = std::min<std::size_t>(found, heaps.size());
  return std::all_of(heaps.begin(), heaps.begin() + count,
                     [](HANDLE heap) { return ::HeapValidate(heap, 0, nullptr) != 0; });
}

}  // namespace quillet
