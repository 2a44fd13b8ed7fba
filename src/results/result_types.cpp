#include "results/result_types.h"

#include "support/text.h"

namespace quillet {

bool LOOK_UP_TYPE_NAME(std::string_view code, std::string& name) {
  bool is_known = false;
  for (const ResultType& type : result_types) {
    if (!ASAME(code, type.code)) continue;
    name = type.name;
    is_known = true;
  }
  return is_known;
}

}  // namespace quillet
