#include "driver/operation_choice.h"

#include <fmt/format.h>

#include "support/console.h"

namespace quillet {

Operation CHOOSE_OPERATION(const RunOptions& options) {
  SAY_APART("Checking operational flags.");
  Operation chosen{};
  for (const OperationName& name : operation_names) {
    if (!options.has(name.operation)) continue;
    SAY(fmt::format("Opertational flag {} ({})", name.flag, name.meaning));
    chosen = name.operation;
  }
  const auto count = options.operations.count();
  if (count > 1) FAIL_RUN("ERROR - Multiple operational flags specified, expecting 1.");
  if (count == 0) FAIL_RUN("ERROR - No operational flags specified.");
  SAY_APART("Found 1 operational flags specified.");
  return chosen;
}

}  // namespace quillet
