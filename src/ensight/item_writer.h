// Many items of one width into an output, and single numbers as texts.
#pragma once

#include <cstdint>
#include <string>

#include "ensight/fixed_forms.h"
#include "support/output_unit.h"

namespace quillet {

// Calls write(index, at), which returns the end of what it wrote, for every index from 0.
template <typename WriteItem>
void WRITE_ITEMS(OutputUnit& out, std::int64_t count, int width, WriteItem write) {
  out.write_items(count, width, [write](std::int64_t first, std::int64_t end, char* at) {
    for (std::int64_t i = first; i < end; ++i) at = write(i, at);
  });
}

// The same for texts that end in a line feed; `width` counts it.
template <typename WriteText>
void WRITE_LINES(OutputUnit& out, std::int64_t count, int width, WriteText write) {
  WRITE_ITEMS(out, count, width, [write](std::int64_t i, char* at) {
    at = write(i, at);
    *at = '\n';
    return at + 1;
  });
}

inline std::string E12_5_TEXT(double value) {
  std::string text(e12_5_width, ' ');
  WRITE_E12_5(value, text.data());
  return text;
}

inline std::string COORDINATE_TEXT(double value) {
  std::string text(e12_5_width, ' ');
  WRITE_COORDINATE(value, text.data());
  return text;
}

inline std::string I10_TEXT(std::int32_t value) {
  std::string text(i10_width, ' ');
  WRITE_I10(value, text.data());
  return text;
}

}  // namespace quillet
