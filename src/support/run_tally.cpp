#include "support/run_tally.h"

namespace quillet {

RunTally& RUN_TALLY() {
  static RunTally tally;
  return tally;
}

}  // namespace quillet
