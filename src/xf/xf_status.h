// What every XF_ operation returns. The operations print nothing and never end the run: the callers
// say what went wrong and end it.
#pragma once

#include <string>
#include <utility>

namespace quillet {

struct [[nodiscard]] XfStatus {
  enum class Kind { success, failure, no_memory };

  Kind kind = Kind::success;
  std::string reason;  // one phrase, such as "expected 1000 values, found 900"

  bool ok() const { return kind == Kind::success; }
};

inline XfStatus XF_FAILURE(std::string reason) {
  return {XfStatus::Kind::failure, std::move(reason)};
}

}  // namespace quillet
