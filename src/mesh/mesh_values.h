#pragma once

#include <cstdint>

namespace quillet {

// Values of one output time as they are looked up anywhere on the mesh: scalars, or one component
// of vectors.
struct MeshValues {
  const float* value = nullptr;         // per node, or per element
  const std::int8_t* status = nullptr;  // per element, 1 is wet; null: all are
  bool per_element = false;
  bool take_nearest = false;   // the nearest node's value instead of one in between
  bool may_hold_codes = true;  // scalars: some values are no quantities (IS_NO_QUANTITY)

  bool is_wet(std::int32_t element) const { return status == nullptr || status[element] == 1; }
};

}  // namespace quillet
