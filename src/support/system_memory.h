// Memory, as the system is asked for it.
#pragma once

#include <cstddef>

namespace quillet {

// Memory for `size` bytes, a multiple of `alignment`, at a multiple of it (a power of two); null
// when there is none. To be given back by FREE_ALIGNED_MEMORY.
void* ALIGNED_MEMORY(std::size_t alignment, std::size_t size);
void FREE_ALIGNED_MEMORY(void* memory);

// Asks for large pages behind this memory. A hint; the system may not have them.
void PREFER_LARGE_PAGES(void* memory, std::size_t size);

// False when something has written beyond its memory and the system can tell.
bool HEAP_IS_SOUND();

}  // namespace quillet
