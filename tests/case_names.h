// Names of parameterised cases, so that a failure says what does not hold.
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace quillet::testing {

// "the truth table" of case 0 is "0_TheTruthTable": a test's name may hold nothing but letters and
// digits, and the number keeps cases of one name apart.
inline std::string CASE_NAME(const std::string& text, std::size_t number) {
  std::string name = std::to_string(number) + "_";
  bool begins_word = true;
  for (const char c : text) {
    const bool is_kept = std::isalnum(static_cast<unsigned char>(c)) != 0;
    if (is_kept) {
      name += begins_word ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
    }
    begins_word = !is_kept;
  }
  return name;
}

// For parameters that have a `name`, and for texts.
struct NameOfCase {
  template <typename Param>
  std::string operator()(const ::testing::TestParamInfo<Param>& info) const {
    if constexpr (std::is_convertible_v<Param, std::string>) {
      return CASE_NAME(info.param, info.index);
    } else {
      return CASE_NAME(info.param.name, info.index);
    }
  }
};

// For cases that are told apart by one condition.
struct NameOfCondition {
  std::string if_true, if_false;
  std::string operator()(const ::testing::TestParamInfo<bool>& info) const {
    return info.param ? if_true : if_false;
  }
};

}  // namespace quillet::testing
