#include "support/zeroed_memory.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#include "support/system_memory.h"

namespace quillet {
namespace {

constexpr std::size_t large_page_size = std::size_t{2} << 20;
constexpr std::size_t smallest_large_size = std::size_t{1} << 20;

}  // namespace

ZeroedMemory ALLOCATE_ZEROED(std::size_t count, std::size_t item_size) {
  if (count > (SIZE_MAX - large_page_size) / item_size) throw std::bad_alloc();
  const std::size_t size = count * item_size;
  const bool is_large = size >= smallest_large_size;
  void* const block = std::calloc(is_large ? size + large_page_size : size + 1, 1);
  if (block == nullptr) throw std::bad_alloc();
  if (!is_large) return {block, block};
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  void* const start = static_cast<char*>(block) + (large_page_size - address % large_page_size);
  PREFER_LARGE_PAGES(start, size);
  return {start, block};
}

void FREE_ZEROED(const ZeroedMemory& memory) {
  std::free(memory.block);
}

}  // namespace quillet
