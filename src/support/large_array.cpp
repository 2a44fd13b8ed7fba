#include "support/large_array.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#include "support/system_memory.h"

namespace quillet {
namespace {

constexpr std::size_t large_page_size = std::size_t{2} << 20;
constexpr std::size_t smallest_large_size = std::size_t{1} << 20;

// What the C library gave, which stands before the memory that lies in it.
void*& block_of(void* memory) {
  return static_cast<void**>(memory)[-1];
}

}  // namespace

void* ALLOCATE_LARGE(std::size_t size) {
  if (size > SIZE_MAX - 2 * large_page_size) throw std::bad_alloc();
  const bool is_large = size >= smallest_large_size;
  const std::size_t alignment = is_large ? large_page_size : alignof(std::max_align_t);
  const std::size_t whole = (size + alignment - 1) / alignment * alignment;
  void* const block = std::calloc(whole + alignment, 1);
  if (block == nullptr) throw std::bad_alloc();
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  void* const memory = static_cast<char*>(block) + (alignment - address % alignment);
  block_of(memory) = block;
  if (is_large) PREFER_LARGE_PAGES(memory, whole);
  return memory;
}

void FREE_LARGE(void* memory) {
  if (memory != nullptr) std::free(block_of(memory));
}

}  // namespace quillet
