#include "support/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace quillet {
namespace {

// clang-format off
TEST(Numbers, RealsAreAsShortAsTheyCanBe) {
  const std::pair<float, std::string> texts[] = {
      {0, "0"}, {1, "1"}, {0.1F, "0.1"}, {0.0001F, "0.0001"}, {-27.5F, "-27.5"},
      {99999, "99999"}, {99999.1F, "99999.1"}, {16777216, "16777216"},
      {1.0F / 3.0F, "0.33333334"}, {1e-6F, "0.000001"}, {1.25e-5F, "0.0000125"},
      {-9.5e-7F, "-9.5e-07"}, {1e15F, "1000000000000000"}, {2e16F, "2e+16"}};
  for (const auto& [value, text] : texts) EXPECT_EQ(AREAL(value), text);
}

TEST(Numbers, AreReadUpToTheirEnd) {
  const std::pair<std::string, float> texts[] = {
      {"5", 5}, {" \t 0.5", 0.5F}, {"+3", 3}, {"-3.", -3}, {".5", 0.5F}, {"1E+3", 1000},
      {"1d3", 1000}, {"-1.5D-1", -0.15F}, {"2 rest", 2}, {"2,5", 2}, {"2/5", 2}, {"2\tx", 2},
      {"1e-60", 0}, {"99999.1", 99999.1F}};
  for (const auto& [text, value] : texts) EXPECT_EQ(READ_REAL(text), value) << text;
}
// clang-format on

TEST(Numbers, EveryRealTextReadsBackToTheSameReal) {
  std::mt19937 random(20200707);
  for (int i = 0; i < 100000; ++i) {
    const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    if (!std::isfinite(value)) continue;
    ASSERT_EQ(READ_REAL(AREAL(value)), value) << AREAL(value);
  }
}

TEST(Numbers, FixedDecimals) {
  EXPECT_EQ(AREALD(0, 3), "0.000");
  EXPECT_EQ(AREALD(99999.1F, 3), "99999.102");
  EXPECT_EQ(AREALD(-0.0625, 2), "-0.06");
  EXPECT_EQ(AINTEGER(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

const auto nothing = std::nullopt;

TEST(Numbers, OtherTextsAreRefused) {
  for (const char* const text : {"", "  ", "x", "0.3x", ",5", "/", "inf", "-nan", "0x10", "1e",
                                 "+-1", "--1", "1e+-2", ".", "1.2.3", "1e39", "1-5", "+", "1ee5"}) {
    EXPECT_EQ(READ_REAL(text), nothing) << text;
  }
}

TEST(Numbers, IntegersMustBeIntegers) {
  EXPECT_EQ(READ_INTEGER(" +12,7"), 12);
  EXPECT_EQ(READ_INTEGER("-2147483648"), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(READ_INTEGER("2147483648"), nothing);
  EXPECT_EQ(READ_INTEGER("1.0"), nothing);
  EXPECT_EQ(READ_INTEGER("1e2"), nothing);
  EXPECT_EQ(READ_INTEGER(""), nothing);
}

TEST(Numbers, TextMayFollowThem) {
  for (const char* const text : {"0,3", "1/5", "2 h", "7,"}) {
    EXPECT_TRUE(TEXT_FOLLOWS_NUMBER(text)) << text;
  }
  for (const char* const text : {"0.3", " 1 ", "\t2\t", ""}) {
    EXPECT_FALSE(TEXT_FOLLOWS_NUMBER(text)) << text;
  }
}

TEST(Numbers, DoublesKeepTheirDigits) {
  EXPECT_EQ(READ_DOUBLE("6123456.789"), 6123456.789);
  EXPECT_EQ(READ_DOUBLE("1d300"), 1e300);
  EXPECT_EQ(READ_DOUBLE("1e400"), nothing);
}

}  // namespace
}  // namespace quillet
