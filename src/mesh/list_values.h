// Free-format reading of the values of one line, in every form they may take.
//
// Values are separated by blanks or by one comma with or without blanks; tabs and CR characters are
// blanks. A slash ends the values of the line. Two commas with nothing between them state no value:
// that cannot be read, as a value left at 0 would pass for one that was stated. What a number is
// stands with READ_DOUBLE.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quillet {

class ListValues {
 public:
  explicit ListValues(std::string_view text) : rest(text) {}

  // Each takes the next value. False, with the value left alone, when it cannot be read or when
  // there is none.
  bool value(double& result);
  bool value(float& result);
  bool value(std::int32_t& result);
  bool value(std::int8_t& result);

  // Goes past what value(float&) would take.
  bool skip_real() {
    float ignored = 0;
    return value(ignored);
  }

  // Two characters, with blanks on the right: a text in quotation marks or up to the next
  // separator. What is longer is cut.
  bool code(std::array<char, 2>& result);

  // True when the last value was missing because the line had no more.
  bool ended() const { return has_ended; }

 private:
  bool find_value();
  bool next(std::string_view& value);
  bool next_quoted(std::string_view& value);

  std::string_view rest;
  bool is_first = true;
  bool has_ended = false;
};

}  // namespace quillet
