#include "support/version.h"

namespace quillet {

std::string_view PROGRAM_VERSION() {
  return QUILLET_VERSION;
}

}  // namespace quillet
