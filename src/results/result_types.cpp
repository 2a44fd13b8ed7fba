#include "results/result_types.h"

#include "support/text.h"

namespace quillet {

void LOOK_UP_TYPE_NAME(std::string_view code, std::string& name) {
  for (const ResultType& type : result_types) {
    if (ASAME(code, type.code)) name = type.name;
  }
}

}  // namespace quillet
