// The cards of a .2dm file, one per line, and the order of their values:
//
//   ND   id x y z                       full form: also elevation flag, three reals
//   E3T  id n1 n3 n2 material           pre-2005 form: also two integers
//   E4Q  id n1 n4 n3 n2 material        full form: also two integers, an 8-bit integer, and for E3T
//   E9Q  id n1 n5 n2 n6 n3 n7 n4 n8 n9  a code of two characters
//          material ...
//
// Triangles and 4-node quadrilaterals are turned round, the first node kept; 9-node quadrilaterals,
// which only the full form knows, are not. A line is known by its first characters alone, whatever
// follows them. Lines of other cards say nothing that is used here.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "mesh/mesh.h"

namespace quillet {

enum class MeshCard { node, triangle, quad4, quad9, part, other };

constexpr std::string_view mesh_part_card = "MESHPART";
constexpr std::size_t node_values_start = 2;  // characters before the values
constexpr std::size_t element_values_start = 3;

// The card of a text that is known to have a line end: no character after that is looked at.
inline MeshCard ELEMENT_OR_NODE_AT(const char* text) {
  if (text[0] == 'N') return text[1] == 'D' ? MeshCard::node : MeshCard::other;
  if (text[0] != 'E') return MeshCard::other;
  if (text[1] == '3') return text[2] == 'T' ? MeshCard::triangle : MeshCard::other;
  if (text[1] == '4') return text[2] == 'Q' ? MeshCard::quad4 : MeshCard::other;
  return text[1] == '9' && text[2] == 'Q' ? MeshCard::quad9 : MeshCard::other;
}

inline MeshCard CARD_OF(std::string_view line) {
  if (line.starts_with("ND")) return MeshCard::node;
  if (line.starts_with("E4Q")) return MeshCard::quad4;
  if (line.starts_with("E3T")) return MeshCard::triangle;
  if (line.starts_with("E9Q")) return MeshCard::quad9;
  return line.starts_with(mesh_part_card) ? MeshCard::part : MeshCard::other;
}

// The slots in the order of the card's nodes.
constexpr std::array<std::size_t, 3> triangle_slots{0, 2, 1};
constexpr std::array<std::size_t, 4> quad4_slots{0, 3, 2, 1};
constexpr std::array<std::size_t, 9> quad9_slots{0, 4, 1, 5, 2, 6, 3, 7, 8};

// Takes consecutive values. Both readings of a line, QuickValues and ListValues, will do.
template <typename Values, typename... Results>
[[gnu::always_inline]] inline bool TAKE(Values& values, Results&... results) {
  return (... && values.value(results));
}

// The beginning of an element card: its id, and its nodes in their slots.
template <typename Values, std::size_t count>
[[gnu::always_inline]] inline bool TAKE_NODES(Values& values,
                                              const std::array<std::size_t, count>& slots,
                                              std::int32_t& id, std::int32_t* nodes) {
  if (!values.value(id)) return false;
  for (const std::size_t slot : slots) {
    if (!values.value(nodes[slot])) return false;
  }
  return true;
}

}  // namespace quillet
