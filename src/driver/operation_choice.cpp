#include "driver/operation_choice.h"

#include <fmt/format.h>

#include "support/console.h"

namespace quillet {

const OperationRow& CHOOSE_OPERATION(const RunOptions& options) {
  SAY_APART("Checking operational flags.");
  for (const OperationRow& operation : OPERATIONS()) {
    if (!options.asks_for(operation)) continue;
    SAY(fmt::format("Opertational flag {} ({})", operation.flag, operation.meaning));
  }
  const std::size_t count = options.operations.size();
  if (count > 1) FAIL_RUN("ERROR - Multiple operational flags specified, expecting 1.");
  if (count == 0) FAIL_RUN("ERROR - No operational flags specified.");
  SAY_APART("Found 1 operational flags specified.");
  return *options.operations.front();
}

}  // namespace quillet
