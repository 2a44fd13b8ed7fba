// Arrays with a value for every node or cell of a mesh.
#pragma once

#include <cstddef>
#include <vector>

namespace quillet {

// Memory for `size` bytes. From 1 MiB on it is aligned to large pages and the system is asked to
// use them: handing out ordinary pages one by one, as they are first touched, takes a third of a
// short run on a million nodes. Throws std::bad_alloc.
void* ALLOCATE_LARGE(std::size_t size);
void FREE_LARGE(void* memory);

template <typename Value>
struct LargePageAllocator {
  using value_type = Value;

  LargePageAllocator() = default;
  template <typename Other>
  LargePageAllocator(const LargePageAllocator<Other>&) {}

  Value* allocate(std::size_t count) {
    return static_cast<Value*>(ALLOCATE_LARGE(count * sizeof(Value)));
  }
  void deallocate(Value* values, std::size_t) { FREE_LARGE(values); }

  friend bool operator==(const LargePageAllocator&, const LargePageAllocator&) { return true; }
};

template <typename Value>
using LargeArray = std::vector<Value, LargePageAllocator<Value>>;

}  // namespace quillet
