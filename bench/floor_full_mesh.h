// The mesh as the floor programs keep it where quillet reads all of it: plain arrays by id, in huge
// pages, of what anybody uses. The other values are read and dropped.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "floor_files.h"
#include "floor_mesh_lines.h"

namespace quillet_floor {

struct FullMesh {
  // Room for so many; pages that are not used cost nothing.
  FullMesh(std::int64_t most_nodes, std::int64_t most_elements)
      : x(make_array<double>(most_nodes)),
        y(make_array<double>(most_nodes)),
        z(make_array<float>(most_nodes)),
        corners(make_array<std::int32_t>(4 * most_elements)),
        others(make_array<std::int32_t>(5 * most_elements)) {}

  const char* take_node(const char* at) {
    std::int64_t id = 0;
    at = take_integer(at, id);
    at = take_real(at, x[id - 1]);
    at = take_real(at, y[id - 1]);
    at = take_real(at, z[id - 1]);
    ++node_count;
    if (form != Form::full) return at;
    std::int32_t flag = 0;
    float value = 0;
    at = take_integer(at, flag);
    for (int i = 0; i < 3; ++i) at = take_real(at, value);
    return at;
  }

  template <int kind>
  const char* take_element(const char* at) {
    std::int64_t id = 0;
    at = take_integer(at, id);
    std::int32_t nodes[9] = {};
    at = take_nodes<kind>(at, nodes);
    std::memcpy(corners + 4 * (id - 1), nodes, 4 * sizeof *nodes);
    if (kind == 9) std::memcpy(others + 5 * (id - 1), nodes + 4, 5 * sizeof *nodes);
    ++element_count;
    constexpr int values_of_form[] = {4, 3, 1};
    std::int32_t value = 0;
    for (int i = 0; i < values_of_form[static_cast<int>(form)]; ++i) at = take_integer(at, value);
    return kind == 3 && form == Form::full ? skip_item(at) : at;
  }

  // Sets counts[node] to 1 for the nodes of cells whose status is 1.
  void mark_active_nodes(const std::int8_t* status, std::uint8_t* counts) const {
    for (std::int64_t i = 0; i < element_count; ++i) {
      if (status[i] != 1) continue;
      const std::int32_t* const corner = corners + 4 * i;
      for (int slot = 0; slot < 4 && corner[slot] != 0; ++slot) counts[corner[slot] - 1] = 1;
      const std::int32_t* const other = others + 5 * i;
      for (int slot = 0; slot < 5 && other[slot] != 0; ++slot) counts[other[slot] - 1] = 1;
    }
  }

  double *x, *y;
  float* z;
  std::int32_t *corners, *others;
  Form form = Form::full;
  std::int64_t node_count = 0, element_count = 0;
};

}  // namespace quillet_floor
