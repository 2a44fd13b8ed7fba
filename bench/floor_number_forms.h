// The number forms of EnSight text files for the floor: digits from integers, rounded by one exact
// multiplication where that is possible, else by the C library.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace quillet_floor {

constexpr int e12_5_width = 12;
constexpr int e12_5_line_width = e12_5_width + 1;
constexpr int i10_width = 10;
constexpr int i10_line_width = i10_width + 1;

// All four-digit numbers as text.
struct Quads {
  constexpr Quads() {
    for (int number = 0; number < 10'000; ++number) {
      for (int digit = 3, rest = number; digit >= 0; --digit, rest /= 10) {
        text[number][digit] = static_cast<char>('0' + rest % 10);
      }
    }
  }
  char text[10'000][4] = {};
};
inline constexpr Quads quads;

// By the C library, whose 0.1234E+01 has its point elsewhere: four decimals and one more power.
inline char* write_rare_e12_5(double value, char* out) {
  char text[32];
  std::snprintf(text, sizeof text, "%.4E", value);
  const bool is_negative = text[0] == '-';
  const char* const digits = text + is_negative;
  const int exponent = value == 0 ? 0 : std::atoi(digits + 7) + 1;
  char whole[32];
  std::snprintf(whole, sizeof whole, "%s0.%c%.4sE%+03d", is_negative ? "-" : " ", digits[0],
                digits + 2, exponent);
  std::memcpy(out, whole, e12_5_width);
  return out + e12_5_width;
}

// Whether a product that the multiplication may have rounded says where the value belongs.
inline bool is_clear(double product) {
  return product - std::floor(product) != 0.5;
}

// Five digits. Of what a 32-bit real holds, the product from 1e-6 to below 1e5 is exact, so that
// halves go to the even digit as they must.
template <typename Real>
inline char* write_e12_5(Real value, char* out) {
  constexpr double powers[] = {1e10, 1e9, 1e8, 1e7, 1e6, 1e5, 1e4, 1e3, 1e2, 1e1, 1e0};
  constexpr double decades[] = {1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4};
  const double size = std::fabs(static_cast<double>(value));
  std::memcpy(out, " 0.00000E+00", e12_5_width);
  if (std::signbit(value)) out[0] = '-';
  if (size == 0) return out + e12_5_width;
  if (!(size >= 1e-6 && size < 99'999)) return write_rare_e12_5(value, out);
  int decade = -1;
  for (const double bound : decades) decade += size >= bound;
  const double product = size * powers[decade];
  if (sizeof(Real) == sizeof(double) && !is_clear(product)) return write_rare_e12_5(value, out);
  auto digits = static_cast<std::int32_t>(std::nearbyint(product));
  if (digits == 100'000) {
    digits = 10'000;
    ++decade;
  }
  const int exponent = decade - 5;
  out[3] = static_cast<char>('0' + digits / 10'000);
  std::memcpy(out + 4, quads.text[digits % 10'000], 4);
  if (exponent < 0) out[9] = '-';
  out[11] = static_cast<char>('0' + std::abs(exponent));
  return out + e12_5_width;
}

inline char* write_i10(std::int32_t value, char* out) {
  std::memset(out, ' ', i10_width);
  char* at = out + i10_width;
  std::int32_t rest = value;
  for (; rest >= 10'000; rest /= 10'000) std::memcpy(at -= 4, quads.text[rest % 10'000], 4);
  do {
    *--at = static_cast<char>('0' + rest % 10);
    rest /= 10;
  } while (rest != 0);
  return out + i10_width;
}

// From 1,000 on a plain decimal with five digits after the point.
inline char* write_coordinate(double value, char* out) {
  if (!(value >= 1000 && value < 999'999)) return write_e12_5(value, out);
  if (!is_clear(value * 1e5)) {
    char text[32];
    std::snprintf(text, sizeof text, "%12.5f", value);
    std::memcpy(out, text, e12_5_width);
    return out + e12_5_width;
  }
  const auto scaled = static_cast<std::int64_t>(std::nearbyint(value * 1e5));
  const auto whole = static_cast<std::int32_t>(scaled / 100'000);
  const auto decimals = static_cast<std::int32_t>(scaled % 100'000);
  char text[i10_width];
  write_i10(whole, text);
  std::memcpy(out, text + i10_width - 6, 6);
  out[6] = '.';
  out[7] = static_cast<char>('0' + decimals / 10'000);
  std::memcpy(out + 8, quads.text[decimals % 10'000], 4);
  return out + e12_5_width;
}

}  // namespace quillet_floor
