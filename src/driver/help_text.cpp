#include "driver/help_text.h"

#include <fmt/format.h>

#include <string>

#include "driver/operation_table.h"
#include "driver/own_options.h"
#include "driver/usage_text.h"
#include "support/console.h"

namespace quillet {
namespace {

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
