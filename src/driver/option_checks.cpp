#include "driver/option_checks.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include "driver/operation_table.h"
#include "support/console.h"

namespace quillet {
namespace {

[[noreturn]] void fail_with_pause(std::string_view message) {
  SAY_APART(message);
  END_WITH_PAUSE();
}

// These end without an empty line before the message.
[[noreturn]] void fail_at_once(std::string_view message) {
  SAY(message);
  EXITS();
}

bool asks_for_any(const RunOptions& options, const auto& condition) {
  return std::any_of(options.operations.begin(), options.operations.end(),
                     [&](const OperationRow* operation) { return condition(*operation); });
}

// The numbers of inputs that are accepted, in the order in which they are tested.
struct InputCountCheck {
  InputCount count;
  std::size_t least;
  std::size_t most;
  std::string_view message;
};

constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();
constexpr std::array input_count_checks{
    InputCountCheck{InputCount::one, 0, 1,
                    "ERROR - Can only specify one .dat file for -dur, -trim, -va, -times, -k and "
                    "-r options."},
    InputCountCheck{InputCount::two, 2, 3,
                    "ERROR - Must specify two .dat files for -dif or -ddur options."},
    InputCountCheck{InputCount::two_or_more, 2, no_limit,
                    "ERROR - Must specify at least two .dat files for -con option."},
};

void check_range(const RunOptions& options) {
  if (!options.range_start && !options.range_end) return;
  if (!options.range_start || !options.range_end) {
    fail_with_pause("ERROR - Must specify at start and end time if using -range option.");
  }
  if (*options.range_start >= *options.range_end) {
    fail_with_pause("ERROR - Range B input less than or equal to Range A.");
  }
}

// The first check that applies is the only one made.
void check_number_of_inputs(const RunOptions& options) {
  const std::size_t inputs = options.inputs.size();
  for (const InputCountCheck& check : input_count_checks) {
    if (!asks_for_any(options, [&](const auto& row) { return row.inputs == check.count; })) {
      continue;
    }
    if (inputs < check.least || inputs > check.most) fail_with_pause(check.message);
    return;
  }
  check_range(options);
}

}  // namespace

void CHECK_OPTIONS(const RunOptions& options) {
  if (options.output_name_missing) {
    fail_with_pause("ERROR - No filename specified for -out option.");
  }
  check_number_of_inputs(options);
  if (!options.time && asks_for_any(options, [](const auto& row) { return row.needs_time; })) {
    fail_at_once("ERROR - Must specify an end time using -t option for duration differences");
  }
  if (options.dataset_path && options.type_given) {
    fail_at_once("ERROR - Cannot specify both -type and -path options.");
  }
  if (options.scalar_id && options.vector_id) {
    fail_at_once("ERROR - Cannot specify both \"-s\" and \"-v\" options.");
  }
}

}  // namespace quillet
