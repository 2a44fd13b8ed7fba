// Scratch memory that grows and is not cleared.
#pragma once

#include <cstddef>
#include <memory>

#include "support/large_array.h"

namespace quillet {

class XfBuffer {
 public:
  // Room for `size` bytes; what it held is lost when it has to grow. May throw std::bad_alloc.
  std::byte* room(std::size_t size) {
    if (size > capacity) {
      bytes.reset();
      capacity = 0;
      bytes.reset(static_cast<std::byte*>(ALLOCATE_LARGE(size)));
      capacity = size;
    }
    return bytes.get();
  }

 private:
  struct Freer {
    void operator()(std::byte* memory) const { FREE_LARGE(memory); }
  };

  std::unique_ptr<std::byte, Freer> bytes;
  std::size_t capacity = 0;
};

}  // namespace quillet
