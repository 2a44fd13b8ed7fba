// Whether two results are the same, and where they differ first.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace quillet::testing {

// The bytes of two files. A failure shows the first difference: of .dat files what it is (a card of
// the header, an output time, a status, a value with its node), of texts the line, else the byte.
::testing::AssertionResult SAME_RESULTS(const std::string& found, const std::string& expected);

}  // namespace quillet::testing
