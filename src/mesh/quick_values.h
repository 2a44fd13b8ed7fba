// Quick reading of the values of an ordinary line: plain numbers, with or without an exponent, with
// blanks, tabs or commas between them. That is how meshes are written, and reading them is mostly
// this loop over digits; the general reading takes many times as long.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <type_traits>

#include "mesh/digit_reader.h"

namespace quillet {

// Each value is what ListValues gives for it, to the last bit. False stands for anything that is
// not ordinary, also for what no reading can take: the line must then be read with ListValues,
// which decides.
class QuickValues {
 public:
  // The text must be followed by a line end, before `text_end`. See DigitReader.
  QuickValues(const char* text, const char* text_end, DigitRuns& expected)
      : first(text), at(text), line_digits(text_end, expected) {}

  // Just after the last value taken; null when what follows shows that the line is not ordinary.
  const char* end() const { return is_separator(*at) ? at : nullptr; }

  [[gnu::always_inline]] bool value(double& result) { return take_real(result); }
  [[gnu::always_inline]] bool value(float& result) { return take_real(result); }

  // Goes past what value(float&) would take, without working out what nobody wants to know.
  [[gnu::always_inline]] bool skip_real() {
    const char* place = value_start();
    if (place == nullptr) return false;
    if (*place == '-') [[unlikely]]
      ++place;
    const std::size_t run = runs;
    runs += 2;
    std::size_t digit_count = line_digits.skip(run, place);
    std::size_t decimals = 0;
    if (*place == '.') {
      ++place;
      decimals = line_digits.skip(run + 1, place);
      digit_count += decimals;
    }
    if (digit_count - 1 >= most_skipped_digits || !may_follow(*place)) {
      place = end_of_other(value_start(), place, digit_count, static_cast<int>(decimals));
    }
    if (place == nullptr) return false;
    at = place;
    return true;
  }

  [[gnu::always_inline]] bool value(std::int32_t& result) {
    const std::size_t run = runs++;
    const char* place = value_start();
    if (place == nullptr) return false;
    std::uint64_t number = 0;
    if (line_digits.take_few(run, place, number)) [[likely]] {
      result = static_cast<std::int32_t>(number);
      at = place;
      return true;
    }
    place = read_integer(place, line_digits, run, result);
    if (place == nullptr) return false;
    at = place;
    return true;
  }

  [[gnu::always_inline]] bool value(std::int8_t& result) {
    std::int32_t number = 0;
    const bool is_ordinary = value(number);
    result = static_cast<std::int8_t>(number);
    return is_ordinary && result == number;
  }

  // What is longer than two characters is not ordinary.
  [[gnu::always_inline]] bool code(std::array<char, 2>& result) {
    const char* const text = value_start();
    if (text == nullptr) return false;
    const bool is_quoted = *text == '"' || *text == '\'';
    const char* place = text + (is_quoted ? 1 : 0);
    const auto ends = [&](char c) { return is_quoted ? c == *text : is_separator(c); };
    if (*place < ' ' || ends(*place)) return false;
    result = {*place++, ' '};
    if (!ends(*place)) result[1] = *place++;
    if (result[1] < ' ' || !ends(*place)) return false;
    at = place + (is_quoted ? 1 : 0);
    return true;
  }

 private:
  // So many digits always fit.
  static constexpr std::size_t most_integer_digits = 9;
  static constexpr std::size_t most_digits = 19;
  // So many digits make a whole number that a 64-bit real holds exactly.
  static constexpr std::size_t most_decimal_digits = 15;
  // So many digits without an exponent are within a 32-bit real's range.
  static constexpr std::size_t most_skipped_digits = 30;
  // And with one, as far as these powers of ten.
  static constexpr int most_skipped_exponent = 30;
  // A 64-bit real holds whole numbers up to this one, and these powers of ten, exactly.
  static constexpr std::uint64_t most_exact = std::uint64_t{1} << 53;
  static constexpr std::array<double, 23> powers_of_ten{
      1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
      1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

  // A number being read. Its place in the text is its own, as a place in the object would be
  // written to memory with every character.
  struct Number {
    [[gnu::always_inline]] explicit Number(const char* text) : place(text) {
      if (*place != '-') return;
      is_negative = true;
      ++place;
    }

    // Appends the digits that follow and returns how many they were. Too many wrap around.
    [[gnu::always_inline]] std::size_t take_digits(const DigitReader& reader, std::size_t run) {
      return reader.take(run, place, digits);
    }

    // Digits with or without a decimal point.
    [[gnu::always_inline]] void take_decimal(const DigitReader& reader, std::size_t run) {
      digit_count = take_digits(reader, run);
      if (*place != '.') return;
      ++place;
      const std::size_t decimals = take_digits(reader, run + 1);
      digit_count += decimals;
      exponent = -static_cast<int>(decimals);
    }

    // The same; false when there is more or less to the number than a few digits.
    [[gnu::always_inline]] bool take_short_decimal(const DigitReader& reader, std::size_t run) {
      take_decimal(reader, run);
      return digit_count - 1 < most_decimal_digits && may_follow(*place);
    }

    // An exponent that is none leaves the place where nothing may follow a number.
    void take_exponent() {
      if ((*place | 0x21) != 'e') return;  // E or D in either case
      const char* digit_at = place + 1;
      const bool is_minus = *digit_at == '-';
      digit_at += is_minus || *digit_at == '+' ? 1 : 0;
      unsigned size = 0;
      int length = 0;
      for (unsigned digit = 0;
           length < 4 && (digit = static_cast<unsigned char>(*digit_at) - unsigned{'0'}) < 10;
           ++digit_at) {
        size = size * 10 + digit;
        ++length;
      }
      if (length == 0) return;
      exponent += is_minus ? -static_cast<int>(size) : static_cast<int>(size);
      place = digit_at;
    }

    // Whether one multiplication or division gives the correctly rounded value.
    bool is_exact() const {
      return digit_count <= most_digits && digits <= most_exact && exponent + 22 >= 0 &&
             exponent <= 22;
    }

    double size() const {
      const auto whole = static_cast<double>(static_cast<std::int64_t>(digits));
      return exponent <= 0 ? whole / powers_of_ten[static_cast<std::size_t>(-exponent)]
                           : whole * powers_of_ten[static_cast<std::size_t>(exponent)];
    }

    const char* place;
    std::uint64_t digits = 0;
    std::size_t digit_count = 0;
    int exponent = 0;  // the value is digits * 10^exponent
    bool is_negative = false;
  };

  template <typename Real>
  [[gnu::always_inline]] bool take_real(Real& result) {
    const std::size_t run = runs;
    runs += 2;
    const char* const text = value_start();
    if (text == nullptr) return false;
    Number number(text);
    if (!number.take_short_decimal(line_digits, run)) return take_other(number, result);
    const double size = static_cast<double>(static_cast<std::int64_t>(number.digits)) /
                        powers_of_ten[static_cast<std::size_t>(-number.exponent)];
    if (std::is_same_v<Real, float> && is_midway(size)) return take_other(number, result);
    result = static_cast<Real>(number.is_negative ? -size : size);
    at = number.place;
    return true;
  }

  [[gnu::noinline]] static const char* read_integer(const char* text, DigitReader reader,
                                                    std::size_t run, std::int32_t& value) {
    Number number(text);
    if (number.take_digits(reader, run) - 1 >= most_integer_digits) return nullptr;
    const auto size = static_cast<std::int32_t>(number.digits);
    value = number.is_negative ? -size : size;
    return number.place;
  }

  // Where a number ends of which the digits do not tell enough; null when it cannot be read.
  [[gnu::noinline]] static const char* end_of_other(const char* text, const char* place,
                                                    std::size_t digit_count, int decimals) {
    if (digit_count == 0) return nullptr;
    Number number(text);
    number.place = place;
    number.exponent = -decimals;
    number.take_exponent();
    const int highest = number.exponent + static_cast<int>(digit_count);
    if (digit_count - 1 < most_skipped_digits && may_follow(*number.place) &&
        number.exponent >= -most_skipped_exponent && highest <= most_skipped_exponent) {
      return number.place;
    }
    float ignored = 0;
    return read_by_library(text, ignored);
  }

  // A number with many digits or with an exponent, of which the digits have been taken.
  template <typename Real>
  [[gnu::always_inline]] bool take_other(const Number& number, Real& result) {
    Real value = 0;
    const char* const stop = read_other(value_start(), number.place, number.digits,
                                        number.digit_count, number.exponent, value);
    if (stop == nullptr) return false;
    result = value;
    at = stop;
    return true;
  }

  // Where the number that starts at `text` ends; null when it cannot be read. A function of its
  // own, given what it needs in registers, so that the objects need not stand in memory for it.
  template <typename Real>
  [[gnu::noinline]] static const char* read_other(const char* text, const char* place,
                                                  std::uint64_t digits, std::size_t digit_count,
                                                  int exponent, Real& value) {
    if (digit_count == 0) return nullptr;
    Number number(text);
    number.place = place;
    number.digits = digits;
    number.digit_count = digit_count;
    number.exponent = exponent;
    number.take_exponent();
    if (number.is_exact() && may_follow(*number.place)) {
      const double size = number.size();
      value = static_cast<Real>(number.is_negative ? -size : size);
      if (!std::is_same_v<Real, float> || !is_midway(size)) return number.place;
    }
    return read_by_library(text, value);
  }

  template <typename Real>
  static const char* read_by_library(const char* text, Real& value) {
    const char* end = text;
    while (!is_separator(*end)) ++end;
    const auto [stop, error] = std::from_chars(text, end, value);
    return stop == end && error == std::errc{} ? end : nullptr;
  }

  // A 64-bit value halfway between two 32-bit ones may have been rounded to there, and then says
  // nothing about which of the two is nearer to the text.
  static bool is_midway(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return (bits & 0x1FFFFFFF) == 0x10000000;
  }

  // A comma before the first value would be a value that is not stated.
  [[gnu::always_inline]] bool is_at_one_separator() const {
    return *at == ' ' || *at == '\t' || (*at == ',' && at != first);
  }

  // Where the next value starts, or something that is none: mostly after one separator. Null where
  // the value before it has not ended.
  [[gnu::always_inline]] const char* value_start() const {
    return is_at_one_separator() && at[1] > ',' ? at + 1 : after_separators(at, at == first);
  }

  [[gnu::noinline]] static const char* after_separators(const char* place, bool is_first) {
    if (!is_first && !may_follow(*place)) return nullptr;
    while (*place == ' ') ++place;
    while (is_blank(*place)) ++place;
    if (*place != ',' || is_first) return place;
    ++place;
    while (is_blank(*place)) ++place;
    return place;
  }

  // Cheaper than the exact test, which only the last value needs: where another character than a
  // separator follows, the next value cannot be read.
  static bool may_follow(char c) { return static_cast<unsigned char>(c) <= ' ' || c == ','; }
  static bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
  static bool is_separator(char c) { return is_blank(c) || c == '\n' || c == ',' || c == '/'; }

  const char* first;
  const char* at;
  DigitReader line_digits;
  std::size_t runs = 0;  // of digits, in the numbers before
};

}  // namespace quillet
