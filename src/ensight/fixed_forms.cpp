#include "ensight/fixed_forms.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

namespace quillet {
namespace {

static_assert(std::endian::native == std::endian::little, "characters are packed low byte first");

// ---- Powers of ten, computed by the compiler ----

// A normal 64-bit value lies in the decade d where 10^d <= |value| < 10^(d + 1).
constexpr int lowest_decade = -308;
constexpr int highest_decade = 308;
constexpr int lowest_power = lowest_decade + 1;
constexpr int highest_power = 4 - lowest_decade;

// 10^p lies in [leading, leading + 1) * 2^(exponent - 63); the top bit of leading is set.
struct PowerOfTen {
  std::uint64_t leading;
  int exponent;
};
using PowersOfTen = std::array<PowerOfTen, highest_power - lowest_power + 1>;

// Little-endian words: wide enough for 5^312, and for 2^832 / 5^307 with more than 64 bits left.
using BigNumber = std::array<std::uint32_t, 27>;
constexpr int top_bit = 832;

constexpr void multiply_by_5(BigNumber& number) {
  std::uint64_t carry = 0;
  for (std::uint32_t& word : number) {
    carry += std::uint64_t{word} * 5;
    word = static_cast<std::uint32_t>(carry);
    carry >>= 32;
  }
}

// Rounds down; so 2^832 divided n times is 2^832 / 5^n rounded down once.
constexpr void divide_by_5(BigNumber& number) {
  std::uint64_t rest = 0;
  for (std::size_t i = number.size(); i-- > 0;) {
    rest = rest << 32 | number[i];
    number[i] = static_cast<std::uint32_t>(rest / 5);
    rest %= 5;
  }
}

constexpr int bit_length(const BigNumber& number) {
  std::size_t words = number.size();
  while (number[words - 1] == 0) --words;
  return static_cast<int>(words * 32) - std::countl_zero(number[words - 1]);
}

// number * 2^scale
constexpr PowerOfTen power_of_ten(const BigNumber& number, int scale) {
  const int length = bit_length(number);
  std::uint64_t leading = 0;
  for (int i = 1; i <= 64; ++i) {
    const int bit = length - i;
    leading = leading << 1 | (bit < 0 ? 0 : number[bit / 32] >> (bit % 32) & 1);
  }
  return {leading, length - 1 + scale};
}

constexpr PowersOfTen make_powers() {
  PowersOfTen powers{};
  BigNumber number{1};
  for (int p = 0; p <= highest_power; ++p, multiply_by_5(number)) {
    powers[p - lowest_power] = power_of_ten(number, p);
  }
  number = {};
  number[top_bit / 32] = 1U << (top_bit % 32);
  for (int p = -1; p >= lowest_power; --p) {
    divide_by_5(number);
    powers[p - lowest_power] = power_of_ten(number, p - top_bit);
  }
  return powers;
}

// 5^27 is the last power of five that fits into 64 bits.
constexpr bool is_exact(int power) {
  return power >= 0 && power <= 27;
}

// ---- One row per decade ----

using ExponentText = std::array<char, 4>;

constexpr ExponentText exponent_text(int exponent) {
  const int size = exponent < 0 ? -exponent : exponent;
  const char sign = exponent < 0 ? '-' : '+';
  const char tens = static_cast<char>('0' + size / 10 % 10);
  const char ones = static_cast<char>('0' + size % 10);
  if (size >= 100) return {sign, static_cast<char>('0' + size / 100), tens, ones};
  return {'E', sign, tens, ones};
}

// value * 10^(4 - decade) has five digits before the decimal point. It is kept as a fixed-point
// number with point_bits behind the point.
constexpr int point_bits = 46;
constexpr int exponent_bias = 1023;

struct DecadeRow {
  std::uint64_t multiplier;   // leading bits of 10^(4 - decade)
  std::uint64_t next_decade;  // bit pattern of the smallest double >= 10^(decade + 1)
  std::int16_t shift;         // of the significand to the right, plus the biased exponent
  bool exact_multiplier;
  ExponentText exponent;
};
using DecadeRows = std::array<DecadeRow, highest_decade - lowest_decade + 1>;

constexpr std::uint64_t smallest_double_from(const PowerOfTen& power, bool exact) {
  const bool round_up = !exact || (power.leading & 0x7FF) != 0;
  const std::uint64_t significand = (power.leading >> 11) + (round_up ? 1 : 0);
  // Adding the significand with its leading 1 raises the exponent field by one.
  return (static_cast<std::uint64_t>(power.exponent + exponent_bias - 1) << 52) + significand;
}

constexpr DecadeRows make_rows() {
  const PowersOfTen powers = make_powers();
  DecadeRows rows{};
  for (int decade = lowest_decade; decade <= highest_decade; ++decade) {
    const PowerOfTen& scale = powers[4 - decade - lowest_power];
    const PowerOfTen& next = powers[decade + 1 - lowest_power];
    rows[decade - lowest_decade] = {
        scale.leading, smallest_double_from(next, is_exact(decade + 1)),
        static_cast<std::int16_t>(62 - point_bits + exponent_bias - scale.exponent),
        is_exact(4 - decade), exponent_text(decade + 1)};
  }
  return rows;
}

constexpr DecadeRows rows = make_rows();

// ---- E12.5 ----

constexpr std::uint64_t sign_bit = 1ULL << 63;
constexpr std::uint64_t smallest_normal = 1ULL << 52;
constexpr std::uint64_t infinity_bits = 0x7FFULL << 52;

template <typename T>
void store(T item, char* out) {
  std::memcpy(out, &item, sizeof item);
}

// The numbers below 1000 as three characters, first digit in the lowest byte.
constexpr auto three_digits = [] {
  std::array<std::uint32_t, 1000> table{};
  for (std::uint32_t n = 0; n < 1000; ++n) {
    table[n] = ('0' + n / 100) | ('0' + n / 10 % 10) << 8 | ('0' + n % 10) << 16;
  }
  return table;
}();

// digits: 10000 to 99999, or 0
inline char* write_parts(bool negative, std::uint32_t digits, ExponentText exponent, char* out) {
  constexpr std::uint64_t point = ' ' | '0' << 8 | '.' << 16;
  constexpr std::uint64_t minus = ' ' ^ '-';
  const std::uint64_t first_three = three_digits[digits / 100];
  const std::uint64_t last_two = three_digits[digits % 100] >> 8;
  store((point | first_three << 24 | last_two << 48) ^ (negative ? minus : 0), out);
  store(exponent, out + 8);
  return out + e12_5_width;
}

// Any finite value but zero: the library rounds from the exact expansion, half to even.
[[gnu::noinline]] char* write_slowly(double value, char* out) {
  std::array<char, 16> text;  // "1.2345e-308"
  const auto end =
      std::to_chars(text.begin(), text.end(), std::fabs(value), std::chars_format::scientific, 4)
          .ptr;
  text[1] = text[0];
  std::uint32_t digits = 0;
  std::from_chars(&text[1], &text[6], digits);
  int exponent = 0;
  std::from_chars(text[7] == '+' ? &text[8] : &text[7], end, exponent);
  return write_parts(std::signbit(value), digits, exponent_text(exponent + 1), out);
}

[[gnu::noinline]] char* write_unusual(double value, char* out) {
  if (std::fabs(value) < 1) return write_slowly(value, out);  // denormal
  const std::string_view text = std::isnan(value)     ? "         NaN"
                                : std::signbit(value) ? "   -Infinity"
                                                      : "    Infinity";
  return std::copy(text.begin(), text.end(), out);
}

// Row of the largest decade that begins at or below 2^exponent, for the exponents of all normal
// values; the exponent is biased. 315653 / 2^20 is log10(2).
inline std::size_t row_of_exponent(std::uint32_t biased_exponent) {
  constexpr std::uint32_t offset = (-lowest_decade << 20) - exponent_bias * 315653;
  return (biased_exponent * 315653 + offset) >> 20;
}

// The value times a power of ten, as a fixed-point number of 64 bits that is less than two units of
// its last bit too small. Only when that leaves open on which side of a half the value lies, or
// whether exactly there, is more work needed.
inline char* write_e12_5(double value, char* out) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t magnitude = bits & ~sign_bit;
  if (magnitude - smallest_normal >= infinity_bits - smallest_normal) {
    if (magnitude != 0) return write_unusual(value, out);
    return write_parts(bits != 0, 0, {'E', '+', '0', '0'}, out);
  }

  const auto exponent = static_cast<std::uint32_t>(magnitude >> 52);
  std::size_t index = row_of_exponent(exponent);
  index += static_cast<std::size_t>(magnitude >= rows[index].next_decade);
  const DecadeRow* row = &rows[index];

  // The shift is 0 to 4, so no bit is lost.
  const std::uint64_t significand = (magnitude << 11 | sign_bit) >> (row->shift - exponent);
  const auto product = static_cast<unsigned __int128>(significand) * row->multiplier;
  constexpr std::uint64_t half = 1ULL << (point_bits - 1);
  constexpr std::uint64_t fraction_mask = 2 * half - 1;
  const std::uint64_t rounded = static_cast<std::uint64_t>(product >> 64) + half;
  auto digits = static_cast<std::uint32_t>(rounded >> point_bits);
  if (((rounded + 1) & fraction_mask) <= 1) [[unlikely]] {
    if (!row->exact_multiplier) return write_slowly(value, out);
    const bool is_tie = (rounded & fraction_mask) == 0 && significand * row->multiplier == 0;
    if (is_tie) digits -= digits % 2;
  }
  if (digits == 100000) [[unlikely]] {
    digits = 10000;
    ++row;
  }
  return write_parts(bits != magnitude, digits, row->exponent, out);
}

// ---- Coordinates ----

constexpr double first_plain = 1000.0;
constexpr double end_of_plain = 1000000.0;
constexpr std::uint64_t hundred_thousand = 100000;

// The value times 10^5, rounded from its exact expansion, half to even; first_plain <= value <
// end_of_plain. So the product is below 2^53 * 2^17, and 33 to 43 of its bits stand behind the
// point.
inline std::uint64_t hundred_thousandths(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t significand = (bits & (smallest_normal - 1)) | smallest_normal;
  const int point = exponent_bias + 52 - static_cast<int>(bits >> 52);
  const auto product = static_cast<unsigned __int128>(significand) * hundred_thousand;
  const auto fraction = static_cast<std::uint64_t>(product) & ((1ULL << point) - 1);
  const auto whole = static_cast<std::uint64_t>(product >> point);
  const std::uint64_t half = 1ULL << (point - 1);
  return whole +
         static_cast<std::uint64_t>(fraction > half || (fraction == half && whole % 2 == 1));
}

// A number of 9 to 11 digits, the last five behind the point.
inline char* write_plain(std::uint64_t number, char* out) {
  const auto whole = static_cast<std::uint32_t>(number / hundred_thousand);
  const auto decimals = static_cast<std::uint32_t>(number % hundred_thousand);
  constexpr std::uint64_t zero_to_blank = '0' ^ ' ';
  const std::uint64_t first_three = three_digits[decimals / 100];
  const std::uint64_t last_two = three_digits[decimals % 100] >> 8;
  std::uint64_t text = three_digits[whole / 1000] | std::uint64_t{three_digits[whole % 1000]} << 24;
  if (whole < 100000) text ^= zero_to_blank;
  if (whole < 10000) text ^= zero_to_blank << 8;
  store(text | std::uint64_t{'.'} << 48 | first_three << 56, out);
  store(static_cast<std::uint32_t>(first_three >> 8 | last_two << 16), out + 8);
  return out + e12_5_width;
}

inline char* write_coordinate(double value, char* out) {
  if (!(value >= first_plain && value < end_of_plain)) return write_e12_5(value, out);
  const std::uint64_t number = hundred_thousandths(value);
  constexpr auto first_too_long = static_cast<std::uint64_t>(end_of_plain) * hundred_thousand;
  return number < first_too_long ? write_plain(number, out) : write_e12_5(value, out);
}

// ---- I10 ----

// Other than 0 to 99999999.
[[gnu::noinline]] char* write_long_integer(std::int32_t value, char* out) {
  if (value < -999999999) return std::fill_n(out, i10_width, '*');
  std::array<char, i10_width> text;
  const char* end = std::to_chars(text.begin(), text.end(), value).ptr;
  char* first = std::fill_n(out, text.end() - end, ' ');
  return std::copy(text.cbegin(), end, first);
}

inline char* write_i10(std::int32_t value, char* out) {
  const auto number = static_cast<std::uint32_t>(value);
  if (number > 99999999) return write_long_integer(value, out);
  const std::uint64_t text = three_digits[number / 100000] |
                             std::uint64_t{three_digits[number / 100 % 1000]} << 24 |
                             std::uint64_t{three_digits[number % 100] >> 8} << 48;
  constexpr std::uint64_t blanks = 0x2020202020202020;
  constexpr std::uint64_t zeros = 0x3030303030303030;
  constexpr std::uint64_t last_digit = 1ULL << 56;  // shown even when it is 0
  const int leading_zero_bits = std::countr_zero((text ^ zeros) | last_digit) & ~7;
  store(static_cast<std::uint16_t>(blanks), out);
  store(text & (~0x1010101010101010 | ~0ULL << leading_zero_bits), out + 2);
  return out + i10_width;
}

}  // namespace

char* WRITE_E12_5(float value, char* out) {
  return write_e12_5(value, out);
}

char* WRITE_E12_5(double value, char* out) {
  return write_e12_5(value, out);
}

char* WRITE_COORDINATE(double value, char* out) {
  return write_coordinate(value, out);
}

char* WRITE_E12_5_LINES(const float* values, std::int64_t count, char* out) {
  for (std::int64_t i = 0; i < count; ++i) {
    out = write_e12_5(values[i], out);
    *out++ = '\n';
  }
  return out;
}

char* WRITE_I10(std::int32_t value, char* out) {
  return write_i10(value, out);
}

}  // namespace quillet
