#pragma once

#include <cstdint>

namespace quillet {

// The fixed number forms of the EnSight text files. Every routine writes into the caller's buffer,
// which must have room, writes no closing zero byte and returns the end of what it wrote. Neither
// the locale nor the rounding mode plays a part.

constexpr int e12_5_width = 12;
constexpr int e12_5_line_width = e12_5_width + 1;
constexpr int i10_width = 10;
constexpr int i10_line_width = i10_width + 1;

// E12.5: 12 characters, " 0.12345E+04" for 1234.5. The exact decimal expansion of the value is
// rounded to five digits; a value exactly half-way between two of them goes to the even last digit.
// Zero keeps its sign ("-0.00000E+00"), "NaN", "Infinity" and "-Infinity" are right-aligned, and an
// exponent of three digits takes the place of the letter ("-0.12345+100"), as in Fortran.
char* WRITE_E12_5(float value, char* out);
char* WRITE_E12_5(double value, char* out);

// The same 12 characters for a coordinate: from 1,000 on, as far as it fits, a plain decimal with
// five digits after the point ("120000.37000"), rounded in the same way. Five digits in all would
// let neighbouring nodes fall together.
char* WRITE_COORDINATE(double value, char* out);

// The same as WRITE_E12_5, one value to a line: 13 bytes per value.
char* WRITE_E12_5_LINES(const float* values, std::int64_t count, char* out);

// I10: 10 characters, right-aligned; ten asterisks below -999999999, which do not fit.
char* WRITE_I10(std::int32_t value, char* out);

}  // namespace quillet
