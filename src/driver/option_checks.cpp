#include "driver/option_checks.h"

#include <algorithm>
#include <array>
#include <string_view>

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

bool takes_one_input(const RunOptions& options) {
  constexpr std::array one_input{Operation::keep, Operation::remove, Operation::dur,
                                 Operation::trim, Operation::va,     Operation::times};
  return std::any_of(one_input.begin(), one_input.end(),
                     [&](Operation operation) { return options.has(operation); });
}

void check_range(const RunOptions& options) {
  const bool start_given = options.has(Operation::range);
  if (!start_given && !options.range_end_given) return;
  if (!start_given || !options.range_end_given) {
    fail_with_pause("ERROR - Must specify at start and end time if using -range option.");
  }
  if (options.range_start >= options.range_end) {
    fail_with_pause("ERROR - Range B input less than or equal to Range A.");
  }
}

// The first group that applies is the only one tested.
void check_number_of_inputs(const RunOptions& options) {
  const std::size_t inputs = options.inputs.size();
  if (takes_one_input(options)) {
    if (inputs > 1) {
      fail_with_pause(
          "ERROR - Can only specify one .dat file for -dur, -trim, -va, -times, -k and -r "
          "options.");
    }
  } else if (options.has(Operation::dif) || options.has(Operation::ddur)) {
    if (inputs != 2 && inputs != 3) {
      fail_with_pause("ERROR - Must specify two .dat files for -dif or -ddur options.");
    }
  } else if (options.has(Operation::con)) {
    if (inputs < 2) {
      fail_with_pause("ERROR - Must specify at least two .dat files for -con option.");
    }
  } else {
    check_range(options);
  }
}

}  // namespace

void CHECK_OPTIONS(const ParsedArguments& arguments) {
  const RunOptions& options = arguments.options;
  if (arguments.output_name_missing) {
    fail_with_pause("ERROR - No filename specified for -out option.");
  }
  check_number_of_inputs(options);
  if (options.has(Operation::ddur) && !options.time_given) {
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
