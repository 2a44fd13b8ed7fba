#include "support/large_array.h"

#include <cstdint>
#include <new>

#include "support/system_memory.h"

namespace quillet {
namespace {

constexpr std::size_t large_page_size = std::size_t{2} << 20;
constexpr std::size_t smallest_large_size = std::size_t{1} << 20;

}  // namespace

void* ALLOCATE_LARGE(std::size_t size) {
  if (size > SIZE_MAX - large_page_size) throw std::bad_alloc();
  const bool is_large = size >= smallest_large_size;
  const std::size_t alignment = is_large ? large_page_size : alignof(std::max_align_t);
  const std::size_t units = size == 0 ? 1 : (size + alignment - 1) / alignment;
  void* const memory = ALIGNED_MEMORY(alignment, units * alignment);
  if (memory == nullptr) throw std::bad_alloc();
  if (is_large) PREFER_LARGE_PAGES(memory, units * alignment);
  return memory;
}

void FREE_LARGE(void* memory) {
  FREE_ALIGNED_MEMORY(memory);
}

}  // namespace quillet
