// Quick reading of the values of an ordinary line: plain numbers with blanks between them. That is
// how meshes are written, and reading them is mostly this loop over digits; the general reading
// takes many times as long.
#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <type_traits>

namespace quillet {

// Each value is what ListValues gives for it, to the last bit. False stands for anything that is
// not ordinary, also for what no reading can take: the line must then be read with ListValues,
// which decides.
class QuickValues {
 public:
  // The text must be followed by a line end or a CR.
  explicit QuickValues(const char* text) : at(text) {}

  // Just after the last value taken; null when what follows shows that the line is not ordinary.
  const char* end() const { return is_separator(*at) ? at : nullptr; }

  [[gnu::always_inline]] bool value(double& result) { return take_real(result); }
  [[gnu::always_inline]] bool value(float& result) { return take_real(result); }

  // Goes past what value(float&) would take, without working out what nobody wants to know.
  [[gnu::always_inline]] bool skip_real() {
    Number number(at);
    const std::size_t digits = number.take_decimal();
    if (digits == 0) return false;
    if (digits > most_decimal_digits || !is_blank_or_control(*number.place)) {
      float ignored = 0;
      return take_long(ignored);
    }
    at = number.place;
    return true;
  }

  [[gnu::always_inline]] bool value(std::int32_t& result) {
    Number number(at);
    if (number.take_digits() - 1 >= most_integer_digits) return false;
    const auto size = static_cast<std::int32_t>(number.digits);
    result = number.is_negative ? -size : size;
    at = number.place;
    return is_blank_or_control(*at);
  }

  [[gnu::always_inline]] bool value(std::int8_t& result) {
    std::int32_t number = 0;
    const bool is_ordinary = value(number);
    result = static_cast<std::int8_t>(number);
    return is_ordinary && result == number;
  }

  bool code(std::array<char, 2>& result) {
    while (*at == ' ') ++at;
    if (!is_letter(at[0]) || !is_letter(at[1]) || !is_separator(at[2])) return false;
    result = {at[0], at[1]};
    at += 2;
    return true;
  }

 private:
  // So many digits always fit; a 64-bit real holds fifteen exactly.
  static constexpr std::size_t most_integer_digits = 9;
  static constexpr std::size_t most_decimal_digits = 15;
  static constexpr std::array<double, most_decimal_digits + 1> powers_of_ten{
      1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

  // A number being read, from the blanks before it. Its place in the text is its own, as a place in
  // the object would be written to memory with every character.
  struct Number {
    [[gnu::always_inline]] explicit Number(const char* text) : place(text) {
      while (*place == ' ') ++place;
      is_negative = *place == '-';
      place += is_negative ? 1 : 0;
    }

    // Appends the digits that follow and returns how many they were. Too many wrap around.
    [[gnu::always_inline]] std::size_t take_digits() {
      const char* digit_at = place;
      std::uint64_t value = digits;
      for (unsigned digit = 0; (digit = static_cast<unsigned char>(*digit_at) - unsigned{'0'}) < 10;
           ++digit_at) {
        value = value * 10 + digit;
      }
      const auto count = static_cast<std::size_t>(digit_at - place);
      place = digit_at;
      digits = value;
      return count;
    }

    // The same for digits with or without a decimal point.
    [[gnu::always_inline]] std::size_t take_decimal() {
      const std::size_t whole = take_digits();
      if (*place != '.') return whole;
      ++place;
      decimals = take_digits();
      return whole + decimals;
    }

    const char* place;
    std::uint64_t digits = 0;
    std::size_t decimals = 0;  // digits after the point
    bool is_negative;
  };

  // Whole numbers that are held exactly make one division give the correctly rounded value.
  template <typename Real>
  [[gnu::always_inline]] bool take_real(Real& result) {
    Number number(at);
    const std::size_t digits = number.take_decimal();
    if (digits == 0) return false;
    if (digits > most_decimal_digits || !is_blank_or_control(*number.place)) {
      return take_long(result);
    }
    const double size = static_cast<double>(static_cast<std::int64_t>(number.digits)) /
                        powers_of_ten[number.decimals];
    if (std::is_same_v<Real, float> && is_midway(size)) return take_long(result);
    result = static_cast<Real>(number.is_negative ? -size : size);
    at = number.place;
    return true;
  }

  // A number that begins with digits, with many of them or with an exponent.
  template <typename Real>
  [[gnu::always_inline]] bool take_long(Real& result) {
    Real value = 0;
    const char* const stop = read_long(at, value);
    if (stop == nullptr) return false;
    result = value;
    at = stop;
    return true;
  }

  // Where the number ends; null when it cannot be read. A function of its own, so that the object
  // need not stand in memory for it.
  template <typename Real>
  [[gnu::noinline]] static const char* read_long(const char* text, Real& value) {
    while (*text == ' ') ++text;
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

  // Cheaper than the exact test, which only the last value needs: where another character than a
  // blank follows, the next value cannot be read.
  static bool is_blank_or_control(char c) { return static_cast<unsigned char>(c) <= ' '; }
  static bool is_separator(char c) { return c == ' ' || c == '\n' || c == '\r'; }
  static bool is_letter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

  const char* at;
};

}  // namespace quillet
