// The mesh on which results were computed, as read from a .2dm file. The item with id i stands at
// index i - 1 of its table. Ids run from 1, and 0 in a node slot means no node.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/zeroed_table.h"

namespace quillet {

struct MESH_NODE_TYPE {
  double x = 0;  // map coordinates, m
  double y = 0;
  float z = 0;                     // bed elevation, m
  std::array<float, 3> further{};  // kept as read
  // "T " corner of a triangle, "H " corner of a quadrilateral, "UV" mid-side and "C " centre of a
  // 9-node quadrilateral, "FV" any node of a finite-volume mesh, blank a node of no element. NUL
  // characters mark a node that has not been read.
  std::array<char, 2> kind{};
  std::int8_t elevation_flag = 0;  // 1: z stood in the file relative to the z offset
};

// The slots 0-3 are the corners, 4-7 the mid-side nodes (4 lies between the corners 0 and 1), 8 the
// centre.
struct MESH_ELEMENT_TYPE {
  std::int32_t kind = 0;  // 3, 4 or 9; 0 marks an element that has not been read
  std::array<std::int32_t, 9> nodes{};
  std::int32_t material = 0;
  std::array<std::int32_t, 2> further{};  // kept as read, as are the next two
  std::int8_t byte = 0;
  std::array<char, 2> code{};
  std::int8_t flag = 0;
};

struct MESH_PART_TYPE {
  std::string name;  // up to 100 characters, without trailing blanks
};

// How the values of the cards are laid out, which the header line tells.
enum class MeshForm { full, pre_2005, fv };

// What a file tells beside its nodes and elements.
struct MESH_SUMMARY_TYPE {
  std::int32_t node_count = 0;
  std::int32_t element_count = 0;
  bool high_resolution = false;  // has 9-node quadrilaterals
  bool fv_mesh = false;          // no geo-referencing values
  std::int32_t triangle_count = 0;
  std::int32_t quad4_count = 0;
  std::int32_t quad9_count = 0;
  std::int32_t mesh_part_count = 0;
  double x_minimum = std::numeric_limits<double>::max();
  double x_maximum = std::numeric_limits<double>::lowest();
  double y_minimum = std::numeric_limits<double>::max();
  double y_maximum = std::numeric_limits<double>::lowest();
  std::array<double, 7> geo_referencing{};
  float z_offset = 0;  // m, subtracted from flagged elevations
  bool pre_2005_format = false;
  std::vector<MESH_PART_TYPE> mesh_parts;

  MeshForm form() const {
    if (fv_mesh) return MeshForm::fv;
    return pre_2005_format ? MeshForm::pre_2005 : MeshForm::full;
  }
};

struct MESH_TYPE : MESH_SUMMARY_TYPE {
  ZeroedTable<MESH_NODE_TYPE> nodes;
  ZeroedTable<MESH_ELEMENT_TYPE> elements;
  float z_minimum = 0;  // not filled by the reading
  float z_maximum = 0;
};

// Number of leading slots that hold nodes: 9, 4 or 3, and 0 for an element that has not been read.
// The kind alone does not tell: a 9-node card that stands where none may turns the element before
// it into one of kind 9.
inline int NODE_COUNT_OF(const std::array<std::int32_t, 9>& nodes) {
  if (nodes[8] != 0) return 9;
  if (nodes[3] != 0) return 4;
  return nodes[0] != 0 ? 3 : 0;
}

}  // namespace quillet
