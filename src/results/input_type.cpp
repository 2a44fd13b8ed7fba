#include "results/input_type.h"

#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

std::string_view without_underscore(std::string_view type) {
  if (!type.empty() && type.front() == '_') type.remove_prefix(1);
  return type;
}

}  // namespace

bool SAME_TYPE(const InputType& a, const InputType& b) {
  return LOWERCASE(without_underscore(a.type)) == LOWERCASE(without_underscore(b.type));
}

void REPORT_INPUT_TYPE(const InputType& input) {
  if (input.type == unknown_type) {
    SAY_APART("WARNING - Could not identify data type - this may effect results");
  }
  SAY_APART("SMS data type identified as: " + QUOTED(LOWERCASE(input.type)));
  SAY("2dm filename: " + QUOTED(input.mesh_file));
}

}  // namespace quillet
