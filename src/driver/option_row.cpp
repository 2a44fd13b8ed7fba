#include "driver/option_row.h"

#include <algorithm>

#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::size_t longest_tag = 100;

[[noreturn]] void fail_value() {
  SAY("ERROR - Reading time for keep or remove argument, or cutoff depth for duration");
  END_WITH_PAUSE();
}

}  // namespace

std::string_view OptionArgument::from_column(std::size_t column) const {
  return argument.substr(std::min(column + dash_size - 2, argument.size()));
}

float OptionArgument::real(std::size_t column) const {
  const auto value = READ_REAL(from_column(column));
  if (!value) fail_value();
  return *value;
}

std::int32_t OptionArgument::integer(std::size_t column) const {
  const auto value = READ_INTEGER(from_column(column));
  if (!value) fail_value();
  return *value;
}

std::string OptionArgument::tag() const {
  return std::string(TRIMF(argument.substr(dash_size)).substr(0, longest_tag));
}

bool OptionRow::matches(std::string_view text_after_dash) const {
  const std::string_view slice = text_after_dash.substr(0, slice_width);
  return match == Match::equals ? ASAME(slice, key) : FLAGEXISTS(slice, key);
}

}  // namespace quillet
