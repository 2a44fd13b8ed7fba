#pragma once

#include <cstddef>
#include <functional>

namespace quillet {

// Receives `count` columns of a row from `first_column` on, elements as in the file, components
// side by side. They stay for the call only.
using XfPieceSink =
    std::function<void(std::size_t first_column, std::size_t count, const std::byte* elements)>;

}  // namespace quillet
