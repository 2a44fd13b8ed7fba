#include "ensight/fixed_forms.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace quillet {
namespace {

template <typename T>
std::string e12_5(T value) {
  std::string text(14, '#');
  EXPECT_EQ(WRITE_E12_5(value, text.data() + 1), text.data() + 13);
  EXPECT_EQ(text.front(), '#');
  EXPECT_EQ(text.back(), '#');
  return text.substr(1, 12);
}

std::string i10(std::int32_t value) {
  std::string text(12, '#');
  EXPECT_EQ(WRITE_I10(value, text.data() + 1), text.data() + 11);
  EXPECT_EQ(text.front(), '#');
  EXPECT_EQ(text.back(), '#');
  return text.substr(1, 10);
}

struct Example {
  double value;
  const char* text;
};

constexpr double infinity = std::numeric_limits<double>::infinity();

// Every value is also a 32-bit one.
// clang-format off
constexpr Example float_examples[] = {
    {1234.5, " 0.12345E+04"}, {-0.5, "-0.50000E+00"}, {0.0, " 0.00000E+00"},
    {-0.0, "-0.00000E+00"}, {1.0, " 0.10000E+01"}, {0.0999755859375, " 0.99976E-01"},
    {-99999.0, "-0.99999E+05"},
    // Exactly half-way: to the even digit.
    {100.125, " 0.10012E+03"}, {100.375, " 0.10038E+03"}, {10000.5, " 0.10000E+05"},
    {10001.5, " 0.10002E+05"}, {123445.0, " 0.12344E+06"}, {123455.0, " 0.12346E+06"},
    {-1234550016.0, "-0.12346E+10"},  // 16 above the half
    {1234549888.0, " 0.12345E+10"},   // 112 below
    // Rounding that brings another digit.
    {99999.5, " 0.10000E+06"}, {9.99999523162841796875, " 0.10000E+02"},
    // The ends of the range of 32-bit reals.
    {0x1.FFFFFEp127, " 0.34028E+39"}, {0x1p-126, " 0.11755E-37"}, {0x1p-149, " 0.14013E-44"},
    {infinity, "    Infinity"}, {-infinity, "   -Infinity"},
};

constexpr Example double_examples[] = {
    {0.1, " 0.10000E+00"}, {100.00499999999999, " 0.10000E+03"},
    {100.00500000000001, " 0.10001E+03"}, {12345.500000000002, " 0.12346E+05"},
    {12344.500000000002, " 0.12345E+05"}, {9.9999e98, " 0.99999E+99"},
    {1.2345e99, " 0.12345+100"}, {-9.99996e98, "-0.10000+100"}, {1.0e-100, " 0.10000E-99"},
    {-1.2345e-124, "-0.12345-123"}, {1.7976931348623157e308, " 0.17977+309"},
    {4.9406564584124654e-324, " 0.49407-323"},
};
// clang-format on

TEST(FixedForms, RealsAsWrittenByHand) {
  for (const Example& example : float_examples) {
    EXPECT_EQ(e12_5(static_cast<float>(example.value)), example.text);
    EXPECT_EQ(e12_5(example.value), example.text);
  }
  for (const Example& example : double_examples) EXPECT_EQ(e12_5(example.value), example.text);
  for (const float sign : {1.0F, -1.0F}) {
    EXPECT_EQ(e12_5(std::copysign(std::numeric_limits<float>::quiet_NaN(), sign)), "         NaN");
  }
}

// The C library's "%.4e" is exact; "1.2345e+03" and "0.12345E+04" have the same digits.
std::string moved_from_c_form(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "% .4e", value);
  const int exponent = std::atoi(text.data() + 8) + 1;
  std::array<char, 32> moved;
  std::snprintf(moved.data(), moved.size(),
                exponent / 100 == 0 ? "%c0.%c%.4sE%+03d" : "%c0.%c%.4s%+04d", text[0], text[1],
                text.data() + 3, exponent);
  return moved.data();
}

TEST(FixedForms, LinesAgreeWithTheCLibrary) {
  std::mt19937 random(7);
  std::vector<float> values;
  while (values.size() < 200000) {
    const auto pattern = static_cast<std::uint32_t>(random());
    const auto any = std::bit_cast<float>(pattern);
    if (std::isfinite(any) && any != 0) values.push_back(any);
    values.push_back(static_cast<float>(pattern % 8000000 + 1) / 8);  // many ties
  }
  std::string lines(values.size() * 13, '#');
  const auto count = static_cast<std::int64_t>(values.size());
  ASSERT_EQ(WRITE_E12_5_LINES(values.data(), count, lines.data()), lines.data() + lines.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_EQ(lines.substr(i * 13, 13), moved_from_c_form(values[i]) + '\n') << values[i];
  }
}

std::string coordinate(double value) {
  std::string text(14, '#');
  EXPECT_EQ(WRITE_COORDINATE(value, text.data() + 1), text.data() + 13);
  EXPECT_EQ(text.front(), '#');
  EXPECT_EQ(text.back(), '#');
  return text.substr(1, 12);
}

TEST(FixedForms, CoordinatesAsWrittenByHand) {
  const Example examples[] = {{0.0, " 0.00000E+00"},
                              {999.9999, " 0.10000E+04"},
                              {1000.0, "  1000.00000"},
                              {9999.99999, "  9999.99999"},
                              {12345.678, " 12345.67800"},
                              {120000.37, "120000.37000"},
                              {999999.99999, "999999.99999"},
                              {999999.999996, " 0.10000E+07"},
                              {1234567.0, " 0.12346E+07"},
                              {-1234.5, "-0.12345E+04"},
                              // Exactly half-way: to the even digit.
                              {2000.5 + 0x1p-6, "  2000.51562"},
                              {2000.5 + 0x3p-6, "  2000.54688"}};
  for (const Example& example : examples) {
    EXPECT_EQ(coordinate(example.value), example.text) << example.value;
  }
}

TEST(FixedForms, CoordinatesAgreeWithTheCLibrary) {
  std::mt19937_64 random(9);
  for (int i = 0; i < 200000; ++i) {
    const double size = std::exp2(10 + static_cast<double>(i % 10));
    double value = size * (1 + static_cast<double>(random() >> 12) * 0x1p-52);
    if (i % 3 == 0) value = std::floor(value * 64) / 64;  // many ties
    if (value >= 999999.999) continue;
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%12.5f", value);
    ASSERT_EQ(coordinate(value), text.data()) << value;
  }
}

TEST(FixedForms, Integers) {
  constexpr auto least = std::numeric_limits<std::int32_t>::min();
  // clang-format off
  const std::pair<std::int32_t, std::string> examples[] = {
      {0, "         0"}, {7, "         7"}, {1000, "      1000"}, {99999999, "  99999999"},
      {100000000, " 100000000"}, {2147483647, "2147483647"}, {-1, "        -1"},
      {-999999999, "-999999999"}, {-1000000000, "**********"}, {least, "**********"}};
  // clang-format on
  for (const auto& [value, text] : examples) EXPECT_EQ(i10(value), text);
}

}  // namespace
}  // namespace quillet
