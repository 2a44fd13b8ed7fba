#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <utility>

#include "mesh/list_values.h"
#include "mesh/quick_values.h"

namespace quillet {
namespace {

template <typename Value>
bool is_read(const std::string& text) {
  Value value{};
  return ListValues(text).value(value);
}

TEST(ListValues, tells_the_end_of_the_values_from_what_cannot_be_read) {
  const auto expect_none = [](const std::string& text, bool ends) {
    double value = 4;
    ListValues values(text);
    EXPECT_FALSE(values.value(value)) << text;
    EXPECT_EQ(values.ended(), ends) << text;
    EXPECT_EQ(value, 4) << text;
  };
  for (const auto* text : {"", "  \t\r", "/ 1"}) expect_none(text, true);
  for (const auto* text : {",1", "1x", "nan", "inf", "0x10", "3*1.0", "1e999", "--1", "."}) {
    expect_none(text, false);
  }
  EXPECT_TRUE(is_read<std::int8_t>("-128") && is_read<std::int32_t>("2147483647"));
  EXPECT_FALSE(is_read<std::int8_t>("128") || is_read<std::int8_t>("-129"));
  EXPECT_FALSE(is_read<std::int32_t>("2147483648") || is_read<std::int32_t>("1.0"));
  EXPECT_FALSE(is_read<float>("1e39"));
}

std::string random_token(std::mt19937& random) {
  constexpr std::string_view plain = "0123456789";
  constexpr std::string_view odd = "0123456789.-+eD ,/\tx";
  std::string token(random() % 4 == 0 ? "-" : "");
  for (auto i = random() % 9; i > 0; --i) token += plain[random() % plain.size()];
  if (random() % 2 == 0) token += '.';
  for (auto i = random() % 12; i > 0; --i) token += plain[random() % plain.size()];
  if (random() % 4 == 0 && !token.empty()) {
    token[random() % token.size()] = odd[random() % odd.size()];
  }
  return token;
}

QuickValues quick_values(const std::string& line) {
  static DigitRuns of_line_before;
  return {line.data(), line.data() + line.size(), of_line_before};
}

// How often the quick reading took a value, having checked that the complete one gives the same.
template <typename Value>
int agreements(const std::string& line) {
  QuickValues quick = quick_values(line);
  ListValues list(std::string_view(line).substr(0, line.size() - 1));
  for (int taken = 0;; ++taken) {
    Value quick_value{};
    Value list_value{};
    if (!quick.value(quick_value)) return taken;
    if (!list.value(list_value)) {
      EXPECT_EQ(quick.end(), nullptr) << line;
      return taken;
    }
    EXPECT_EQ(std::memcmp(&quick_value, &list_value, sizeof list_value), 0) << line;
  }
}

TEST(QuickValues, give_what_the_complete_reading_gives) {
  std::mt19937 random(11);
  int taken = 0;
  for (int round = 0; round < 100000; ++round) {
    const std::string line = random_token(random) + ' ' + random_token(random) + '\n';
    taken += agreements<double>(line) + agreements<float>(line) + agreements<std::int32_t>(line) +
             agreements<std::int8_t>(line);
  }
  EXPECT_GT(taken, 100000);
}

TEST(QuickValues, skip_what_the_complete_reading_takes) {
  std::mt19937 random(12);
  int skipped = 0;
  for (int round = 0; round < 100000; ++round) {
    const std::string line = random_token(random) + " 25\n";
    QuickValues quick = quick_values(line);
    ListValues list(std::string_view(line).substr(0, line.size() - 1));
    float real = 0;
    std::int32_t after_quick = 0;
    std::int32_t after_list = 0;
    if (!quick.skip_real() || !quick.value(after_quick) || quick.end() == nullptr) continue;
    EXPECT_TRUE(list.value(real) && list.value(after_list)) << line;
    EXPECT_EQ(after_quick, after_list) << line;
    ++skipped;
  }
  EXPECT_GT(skipped, 50000);
}

// Decimals a little off the middle between two 32-bit values, nearer to it than to any other 64-bit
// value: rounded by way of 64 bits they would come out on the wrong side.
TEST(QuickValues, round_to_32_bits_once) {
  const std::pair<std::string, float> cases[] = {{"9.67516279220581", 0x1.359aeep+3F},
                                                 {"9.52433156967163", 0x1.30c752p+3F},
                                                 {"-9.04572343826294", -0x1.217692p+3F}};
  for (const auto& [text, expected] : cases) {
    float value = 0;
    EXPECT_TRUE(quick_values(text + '\n').value(value));
    EXPECT_EQ(value, expected) << text;
    EXPECT_TRUE(ListValues(text).value(value));
    EXPECT_EQ(value, expected) << text;
  }
}

}  // namespace
}  // namespace quillet
