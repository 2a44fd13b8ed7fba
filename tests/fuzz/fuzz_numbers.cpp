// Numbers: the quick reading of a line gives what the general reading gives, a real that is written
// reads back, and the fixed form is the one that the exact decimal expansion rounds to.
#include <fmt/format.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "ensight/fixed_forms.h"
#include "fuzz/fuzz_input.h"
#include "mesh/list_values.h"
#include "mesh/quick_values.h"
#include "support/numbers.h"

namespace quillet {
namespace {

template <typename Value>
void compare_readings(const std::string& line, DigitRuns& of_line_before) {
  QuickValues quick(line.data(), line.data() + line.size(), of_line_before);
  ListValues general(std::string_view(line).substr(0, line.size() - 1));
  for (;;) {
    Value value{}, expected{};
    if (!quick.value(value)) return;
    if (!general.value(expected)) {
      // What follows the number is looked at when the line ends: it may not be ordinary.
      if (quick.end() == nullptr) return;
      std::abort();
    }
    if (std::memcmp(&value, &expected, sizeof value) != 0) std::abort();
  }
}

// The second time as a line like the one before it.
template <typename Value>
void check_reading(const std::string& line) {
  DigitRuns of_line_before;
  compare_readings<Value>(line, of_line_before);
  compare_readings<Value>(line, of_line_before);
}

void check_writing(float value) {
  if (!std::isfinite(value)) return;
  const auto read = READ_REAL(AREAL(value));
  if (!read || *read != value) std::abort();
}

}  // namespace
}  // namespace quillet

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string line = std::string(quillet::fuzz::TEXT_OF(data, size)) + "\n";
  const std::string first_line = line.substr(0, line.find('\n')) + "\n";
  quillet::check_reading<double>(first_line);
  quillet::check_reading<float>(first_line);
  quillet::check_reading<std::int32_t>(first_line);
  if (size >= sizeof(float)) {
    float value = 0;
    std::memcpy(&value, data, sizeof value);
    quillet::check_writing(value);
  }
  return 0;
}
