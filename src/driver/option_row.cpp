#include "driver/option_row.h"

#include <algorithm>
#include <optional>

#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::size_t longest_tag = 100;

template <typename Value>
Value read_number(std::optional<Value> (*read)(std::string_view), std::string_view text,
                  std::string_view argument) {
  const auto value = read(text);
  if (!value) {
    SAY("ERROR - Reading time for keep or remove argument, or cutoff depth for duration");
    SAY_HELP(QUOTED(argument));
    END_WITH_PAUSE();
  }
  if (TEXT_FOLLOWS_NUMBER(text)) {
    SAY("WARNING - Text after the number is ignored: " + QUOTED(argument));
  }
  return *value;
}

}  // namespace

std::string_view OptionArgument::from_column(std::size_t column) const {
  return argument.substr(std::min(column + dash_size - 2, argument.size()));
}

float OptionArgument::real(std::size_t column) const {
  return read_number(READ_REAL, from_column(column), argument);
}

std::int32_t OptionArgument::integer(std::size_t column) const {
  return read_number(READ_INTEGER, from_column(column), argument);
}

std::string OptionArgument::tag() const {
  return std::string(TRIMF(argument.substr(dash_size)).substr(0, longest_tag));
}

bool OptionRow::matches(std::string_view text_after_dash) const {
  const std::string_view slice = text_after_dash.substr(0, slice_width);
  return match == Match::equals ? ASAME(slice, key) : FLAGEXISTS(slice, key);
}

}  // namespace quillet
