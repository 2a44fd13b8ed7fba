#include "support/large_array.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace quillet {
namespace {

constexpr std::size_t large_page_size = std::size_t{2} << 20;
constexpr std::size_t smallest_large_size = std::size_t{1} << 20;

void prefer_large_pages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
  ::madvise(memory, size, MADV_HUGEPAGE);  // a hint; the system may not have them
#endif
}

}  // namespace

void* ALLOCATE_LARGE(std::size_t size) {
  if (size > SIZE_MAX - large_page_size) throw std::bad_alloc();
  const bool is_large = size >= smallest_large_size;
  const std::size_t rounded = (size + large_page_size - 1) / large_page_size * large_page_size;
  void* const memory =
      is_large ? std::aligned_alloc(large_page_size, rounded) : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  if (is_large) prefer_large_pages(memory, rounded);
  return memory;
}

void FREE_LARGE(void* memory) {
  std::free(memory);
}

}  // namespace quillet
