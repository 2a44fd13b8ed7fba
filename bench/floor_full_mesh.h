// The mesh as the floor programs keep it where quillet reads all of it: the same records, nodes and
// elements by id, in huge pages. An ordinary .2dm in the full form, its nodes before its elements.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "floor_files.h"
#include "floor_mesh_lines.h"

namespace quillet_floor {

struct Node {
  double x, y;
  float z, more[3];
  char kind[2];
  std::int8_t flag;
};

struct Element {
  std::int32_t kind, nodes[9], material, more[2];
  std::int8_t byte, mark;
  char code[2];
};

struct FullMesh {
  // Room for so many; pages that are not used cost nothing.
  FullMesh(std::int64_t most_nodes, std::int64_t most_elements)
      : nodes(make_array<Node>(most_nodes, huge_pages)),
        elements(make_array<Element>(most_elements, huge_pages)) {}

  const char* take_node(const char* at) {
    std::int32_t id = 0;
    at = take_integer(at, id);
    Node& node = nodes[id - 1];
    at = take_real(at, node.x);
    at = take_real(at, node.y);
    at = take_real(at, node.z);
    at = take_integer(at, node.flag);
    for (float& value : node.more) at = take_real(at, value);
    x_min = std::min(x_min, node.x);
    x_max = std::max(x_max, node.x);
    y_min = std::min(y_min, node.y);
    y_max = std::max(y_max, node.y);
    ++node_count;
    return at;
  }

  template <int kind>
  const char* take_element(const char* at) {
    std::int32_t id = 0;
    at = take_integer(at, id);
    Element& element = elements[id - 1];
    element.kind = kind;
    at = take_nodes<kind>(at, element.nodes);
    at = take_integer(at, element.material);
    for (std::int32_t& value : element.more) at = take_integer(at, value);
    at = take_integer(at, element.byte);
    if (kind == 3) std::memcpy(element.code, skip_blanks(at), 2);
    mark_nodes(element);
    ++element_count;
    return at;
  }

  void mark_nodes(const Element& element) {
    const auto mark = [&](int first, int end, const char* kind) {
      for (int i = first; i < end; ++i) std::memcpy(nodes[element.nodes[i] - 1].kind, kind, 2);
    };
    if (element.kind == 3) return mark(0, 3, "T ");
    mark(0, 4, "H ");
    if (element.kind == 4) return;
    mark(4, 8, "UV");
    mark(8, 9, "C ");
  }

  // Sets counts[node] to 1 for the nodes of cells whose status is 1.
  void mark_active_nodes(const std::int8_t* status, std::uint8_t* counts) const {
    for (std::int64_t i = 0; i < element_count; ++i) {
      if (status[i] != 1) continue;
      const Element& element = elements[i];
      for (int slot = 0; slot < element.kind; ++slot) counts[element.nodes[slot] - 1] = 1;
    }
  }

  static constexpr Scheme huge_pages{};
  Node* nodes;
  Element* elements;
  std::int64_t node_count = 0, element_count = 0;
  double x_min = 999999999.0, x_max = -999999999.0, y_min = 999999999.0, y_max = -999999999.0;
};

}  // namespace quillet_floor
