// Tables of records whose places are filled in any order. A place that has not been filled holds
// zeros: that is how memory comes from the system, so nothing sets it beforehand.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "support/large_array.h"

namespace quillet {

// Records of plain data for which zeros are a good state.
template <typename Item>
class ZeroedTable {
  static_assert(std::is_trivially_copyable_v<Item>);

 public:
  ZeroedTable() = default;
  ZeroedTable(ZeroedTable&& other) noexcept { swap(other); }
  ZeroedTable& operator=(ZeroedTable&& other) noexcept {
    swap(other);
    return *this;
  }
  ~ZeroedTable() { FREE_LARGE(memory); }

  std::size_t size() const { return count; }
  std::size_t capacity() const { return room; }
  bool empty() const { return count == 0; }

  Item* data() { return static_cast<Item*>(memory); }
  const Item* data() const { return static_cast<const Item*>(memory); }
  Item* begin() { return data(); }
  Item* end() { return data() + count; }
  const Item* begin() const { return data(); }
  const Item* end() const { return data() + count; }
  Item& operator[](std::size_t index) { return data()[index]; }
  const Item& operator[](std::size_t index) const { return data()[index]; }

  // Makes room for so many records, of which only those in use cost memory where the system hands
  // it out as it is touched. Throws std::bad_alloc.
  void reserve(std::size_t wanted) {
    if (wanted <= room) return;
    ZeroedTable larger;
    if (wanted > SIZE_MAX / sizeof(Item)) throw std::bad_alloc();
    larger.memory = ALLOCATE_LARGE(wanted * sizeof(Item));
    larger.room = wanted;
    larger.count = count;
    if (count > 0) std::memcpy(larger.memory, memory, count * sizeof(Item));
    swap(larger);
  }

  // The new records are zeros. A table never becomes shorter.
  void grow(std::size_t new_count) {
    reserve(new_count);
    count = std::max(count, new_count);
  }

 private:
  void swap(ZeroedTable& other) noexcept {
    std::swap(memory, other.memory);
    std::swap(count, other.count);
    std::swap(room, other.room);
  }

  void* memory = nullptr;
  std::size_t count = 0;
  std::size_t room = 0;
};

}  // namespace quillet
