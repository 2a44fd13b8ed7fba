// Many items of one width into an output, and single numbers as texts.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

#include "ensight/fixed_forms.h"
#include "support/output_unit.h"

namespace quillet {

// Calls write(index, at), which returns the end of what it wrote, for every index from 0. Every
// item is `width` bytes long.
template <typename WriteItem>
void WRITE_ITEMS(OutputUnit& out, std::int64_t count, int width, WriteItem write) {
  constexpr std::int64_t piece_size = 64 * 1024;
  const std::int64_t piece = piece_size / width;
  for (std::int64_t first = 0; first < count; first += piece) {
    const std::int64_t end = std::min(first + piece, count);
    const auto bytes = static_cast<std::size_t>((end - first) * width);
    char* at = out.room(bytes);
    for (std::int64_t i = first; i < end; ++i) at = write(i, at);
    out.keep(bytes);
  }
}

inline std::string E12_5_TEXT(double value) {
  std::string text(e12_5_width, ' ');
  WRITE_E12_5(value, text.data());
  return text;
}

inline std::string I10_TEXT(std::int32_t value) {
  std::string text(i10_width, ' ');
  WRITE_I10(value, text.data());
  return text;
}

}  // namespace quillet
