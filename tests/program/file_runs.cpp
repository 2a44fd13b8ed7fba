#include "program/file_runs.h"

namespace quillet::testing {

TEST_P(FileRuns, WriteTheseBytesAndSayThis) {
  GetParam().check();
}

}  // namespace quillet::testing
