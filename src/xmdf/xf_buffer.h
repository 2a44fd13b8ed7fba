// Scratch memory that grows and is not cleared.
#pragma once

#include <cstddef>
#include <memory>

namespace quillet {

class XfBuffer {
 public:
  // Room for `size` bytes; what it held is lost when it has to grow. May throw std::bad_alloc.
  std::byte* room(std::size_t size) {
    if (size > capacity) {
      bytes.reset();
      capacity = 0;
      bytes = std::make_unique_for_overwrite<std::byte[]>(size);
      capacity = size;
    }
    return bytes.get();
  }

 private:
  std::unique_ptr<std::byte[]> bytes;
  std::size_t capacity = 0;
};

}  // namespace quillet
