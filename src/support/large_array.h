// Arrays with a value for every node or cell of a mesh.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>
#include <vector>

namespace quillet {

// Memory for `size` bytes that holds zeros as it comes from the system: nothing is touched. From 1
// MiB on it is aligned to large pages and the system is asked to use them: handing out ordinary
// pages one by one, as they are first touched, takes a third of a short run on a million nodes.
// Throws std::bad_alloc.
void* ALLOCATE_LARGE(std::size_t size);
void FREE_LARGE(void* memory);  // which may be null

// Sets no number that an array is not given a value for, as a third of a short run would be spent
// on setting zeros to zero.
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

  template <typename Item, typename... Arguments>
  void construct(Item* place, Arguments&&... arguments) {
    constexpr bool is_number = std::is_arithmetic_v<Item>;
    if constexpr (!is_number || sizeof...(Arguments) > 0) {
      ::new (static_cast<void*>(place)) Item(std::forward<Arguments>(arguments)...);
    }
  }

  friend bool operator==(const LargePageAllocator&, const LargePageAllocator&) { return true; }
};

// A new array of numbers holds zeros. What resize() adds to one that was longer before is whatever
// stood there.
template <typename Value>
using LargeArray = std::vector<Value, LargePageAllocator<Value>>;

}  // namespace quillet
