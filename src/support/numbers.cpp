#include "support/numbers.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include "support/text.h"

namespace quillet {
namespace {

constexpr std::string_view number_ends = " \t,/";

// The characters of the number at the start of the text, without a leading "+".
std::string_view number_text(std::string_view text) {
  text = TRIM_BOTH(text);
  text = text.substr(0, text.find_first_of(number_ends));
  if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
  return text;
}

template <typename Real>
std::optional<Real> read_real(std::string_view text) {
  std::string number(number_text(text));
  const bool only_number_characters =
      number.find_first_not_of("+-.0123456789eEdD") == std::string::npos;
  if (number.empty() || !only_number_characters) return std::nullopt;
  std::replace_if(
      number.begin(), number.end(), [](char c) { return c == 'd' || c == 'D'; }, 'e');

  Real value = 0;
  const char* const end = number.data() + number.size();
  const auto [stop, error] = std::from_chars(number.data(), end, value);
  if (stop != end || error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    // Too small is zero, as far as this reaches; too large cannot be read.
    long double wide = 0;
    const auto wide_error = std::from_chars(number.data(), end, wide).ec;
    if (wide_error != std::errc{} || std::fabs(wide) > 1) return std::nullopt;
    return static_cast<Real>(wide);
  }
  return value;
}

template <typename Real>
std::string plain_decimal(Real value) {
  std::array<char, 400> text;  // the least and the largest 64-bit reals have more than 300 digits
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value + Real{0},
                                 std::chars_format::fixed)
                       .ptr;
  return {text.data(), end};
}

// The digits of "d.ddde+xx" moved to fixed notation.
std::string fixed_notation(bool negative, const std::string& digits, int exponent) {
  std::string text = negative ? "-" : "";
  if (exponent < 0) return text + "0." + std::string(-exponent - 1, '0') + digits;
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= whole) return text + digits + std::string(whole - digits.size(), '0');
  return text + digits.substr(0, whole) + '.' + digits.substr(whole);
}

}  // namespace

std::string AINTEGER(std::int64_t value) {
  return fmt::format("{}", value);
}

std::string AREAL(float value) {
  char buffer[32];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific).ptr;
  const std::string shortest(buffer, end);
  const float size = std::fabs(value);
  if (!(size == 0 || (size >= 1e-6F && size < 1e16F))) return shortest;

  const auto exponent_mark = shortest.find('e');
  const bool negative = shortest[0] == '-';
  std::string digits = shortest.substr(negative ? 1 : 0, exponent_mark - (negative ? 1 : 0));
  if (digits.size() > 1) digits.erase(1, 1);
  return fixed_notation(negative, digits, std::stoi(shortest.substr(exponent_mark + 1)));
}

std::string PLAIN_DECIMAL(float value) {
  return plain_decimal(value);
}

std::string PLAIN_DECIMAL(double value) {
  return plain_decimal(value);
}

std::string AREALD(double value, int decimals) {
  return fmt::format("{:.{}f}", value, decimals);
}

std::optional<float> READ_REAL(std::string_view text) {
  return read_real<float>(text);
}

std::optional<double> READ_DOUBLE(std::string_view text) {
  return read_real<double>(text);
}

std::optional<std::int32_t> READ_INTEGER(std::string_view text) {
  const std::string_view number = number_text(text);
  std::int32_t value = 0;
  const char* const end = number.data() + number.size();
  const auto [stop, error] = std::from_chars(number.data(), end, value);
  if (number.empty() || stop != end || error != std::errc{}) return std::nullopt;
  return value;
}

bool TEXT_FOLLOWS_NUMBER(std::string_view text) {
  return TRIM_BOTH(text).find_first_of(number_ends) != std::string_view::npos;
}

std::optional<double> READ_WHOLE_DOUBLE(std::string_view text) {
  if (text.find_first_of(" \t,/") != std::string_view::npos) return std::nullopt;
  return READ_DOUBLE(text);
}

}  // namespace quillet
