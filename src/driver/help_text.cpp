#include "driver/help_text.h"

#include <fmt/format.h>

#include <array>
#include <string>
#include <string_view>

#include "driver/operation_table.h"
#include "driver/own_options.h"
#include "driver/usage_text.h"
#include "support/console.h"

namespace quillet {
namespace {

struct OptionMeaning {
  std::string_view option;
  std::string_view meaning;
};

// The usage text stays as it is, and so do its gaps.
constexpr std::array options_without_usage{
    OptionMeaning{"-2dm <mesh>", "names the mesh of all inputs"},
    OptionMeaning{"-nowetdry", "no wet/dry test, for any operation: all nodes count"},
    OptionMeaning{"-ignore_mm", "-max and -min do not use stored maxima and minima"},
    OptionMeaning{"-dttol<hours>", "how far off an output time may be, instead of 0.0001"},
};

std::string with_value(const OwnOptionRow& row) {
  return std::string(row.name) + (row.value.empty() ? "" : "=" + std::string(row.value));
}

}  // namespace

void PRINT_HELP() {
  PRINT_USAGE();
  SAY("  All operations, and the pages of the manual that describe them:");
  for (const OperationRow& operation : OPERATIONS()) {
    if (operation.page.empty()) continue;
    SAY(fmt::format("     {:<10} {:<34} docs/operations/{}", operation.flag, operation.meaning,
                    operation.page));
  }
  SAY("");
  SAY("  Further options:");
  for (const OptionMeaning& row : options_without_usage) {
    SAY(fmt::format("     {:<22} {}", row.option, row.meaning));
  }
  SAY("");
  SAY("  Options with two dashes:");
  for (const OperationRow& operation : OPERATIONS()) {
    if (operation.own_option.name.empty()) continue;
    SAY(fmt::format("     {:<22} {}", with_value(operation.own_option),
                    operation.own_option.meaning));
  }
  for (const OwnOptionRow& row : OWN_OPTIONS()) {
    SAY(fmt::format("     {:<22} {}", with_value(row), row.meaning));
  }
}

}  // namespace quillet
