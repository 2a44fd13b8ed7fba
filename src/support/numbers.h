// Numbers as texts, both ways, independent of the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillet {

// Plain digits, no blanks.
std::string AINTEGER(std::int64_t value);

// The shortest decimal that reads back to the same 32-bit real: in fixed notation from 1e-6 to
// below 1e16 (and for 0), in exponent form outside (0.0001, 99999.1, 1e-07).
std::string AREAL(float value);

// The shortest decimal that reads back to the same real, without an exponent (0.1, 350006.25); "0"
// for negative zero too. What is not finite is "inf", "-inf" or "nan".
std::string PLAIN_DECIMAL(float value);
std::string PLAIN_DECIMAL(double value);

// Fixed notation with the given number of decimals, no blanks (99999.000).
std::string AREALD(double value, int decimals);

// Free-format reading of the number at the start of a text: leading blanks and tabs are skipped,
// the number ends at a blank, a tab, a comma, a slash or the end of the text. The exponent letter
// may be E or D in either case. Nothing when there is no such number, when something else follows
// it directly ("0.3x"), for "inf", "nan" and hexadecimal, and for values outside the type's range.
std::optional<float> READ_REAL(std::string_view text);
std::optional<double> READ_DOUBLE(std::string_view text);
std::optional<std::int32_t> READ_INTEGER(std::string_view text);

// True when more than blanks and tabs stands behind the end of that number ("0,3", "1/5", "2 h").
bool TEXT_FOLLOWS_NUMBER(std::string_view text);

// The number that the whole text is: without blanks, and nothing follows it.
std::optional<double> READ_WHOLE_DOUBLE(std::string_view text);

}  // namespace quillet
