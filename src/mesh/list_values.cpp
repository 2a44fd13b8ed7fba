#include "mesh/list_values.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "support/numbers.h"

namespace quillet {
namespace {

constexpr std::string_view blanks = " \t\r";
constexpr std::string_view separators = " \t\r,/";

void skip_blanks(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
}

template <typename Number>
bool keep(const std::optional<Number>& number, Number& result) {
  if (number) result = *number;
  return number.has_value();
}

}  // namespace

// Goes to the first character of the next value.
bool ListValues::find_value() {
  skip_blanks(rest);
  if (!is_first && !rest.empty() && rest[0] == ',') {
    rest.remove_prefix(1);
    skip_blanks(rest);
  }
  is_first = false;
  has_ended = rest.empty() || rest[0] == '/';
  return !has_ended && rest[0] != ',';
}

bool ListValues::next(std::string_view& value) {
  if (!find_value()) return false;
  value = rest.substr(0, rest.find_first_of(separators));
  rest.remove_prefix(value.size());
  return true;
}

bool ListValues::next_quoted(std::string_view& value) {
  const auto closing = rest.find(rest[0], 1);
  if (closing == std::string_view::npos) return false;
  value = rest.substr(1, closing - 1);
  rest.remove_prefix(closing + 1);
  return true;
}

bool ListValues::value(double& result) {
  std::string_view text;
  return next(text) && keep(READ_DOUBLE(text), result);
}

bool ListValues::value(float& result) {
  std::string_view text;
  return next(text) && keep(READ_REAL(text), result);
}

bool ListValues::value(std::int32_t& result) {
  std::string_view text;
  return next(text) && keep(READ_INTEGER(text), result);
}

bool ListValues::value(std::int8_t& result) {
  using limits = std::numeric_limits<std::int8_t>;
  std::int32_t number = 0;
  if (!value(number) || number < limits::min() || number > limits::max()) return false;
  result = static_cast<std::int8_t>(number);
  return true;
}

bool ListValues::code(std::array<char, 2>& result) {
  if (!find_value()) return false;
  std::string_view text;
  const bool is_quoted = rest[0] == '"' || rest[0] == '\'';
  if (!(is_quoted ? next_quoted(text) : next(text))) return false;
  result.fill(' ');
  std::copy_n(text.begin(), std::min(text.size(), result.size()), result.begin());
  return true;
}

}  // namespace quillet
