// What is kept of the cards of a .2dm file, and where: the whole record, or the geometry alone.
// Both read every value of a card. A store has
//
//   Cards                 see READ_CARDS; their records have `node` with x, y, z and the elevation
//                         flag, and `element` with its kind and nodes
//   nodes(), elements()   how long the tables are; nodes_room(), elements_room() their room
//   reserve_..., grow_... see ZeroedTable
//   has_node(index)       whether it has been put there, as has_element
//   put_node, put_element
//   turn_to_quad9(index)  what becomes of an element after which a misplaced 9-node card stands
//   finish(unread)        all places are there; so many elements have not been read
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "mesh/card_runs.h"
#include "mesh/mesh.h"
#include "mesh/mesh_geometry.h"

namespace quillet {

// What both have of a card.
struct FormCards {
  static constexpr std::size_t width = 200;

  MeshForm form;

  Quad9Cards quad9() const {
    return form == MeshForm::full ? Quad9Cards::are_read : Quad9Cards::are_refused;
  }
};

struct RecordCards : FormCards {
  struct Node {
    std::int32_t id = 0;
    std::uint32_t line = 0;
    MESH_NODE_TYPE node;
  };
  struct Element {
    std::int32_t id = 0;
    std::uint32_t line = 0;
    MESH_ELEMENT_TYPE element;
  };

  template <typename Values>
  [[gnu::always_inline]] bool take_node(Values& values, Node& card) const {
    MESH_NODE_TYPE& node = card.node;
    return TAKE(values, card.id, node.x, node.y, node.z) &&
           (form != MeshForm::full ||
            TAKE(values, node.elevation_flag, node.further[0], node.further[1], node.further[2]));
  }

  template <typename Values, std::size_t kind>
  [[gnu::always_inline]] bool take_element(Values& values,
                                           const std::array<std::size_t, kind>& slots,
                                           Element& card) const {
    MESH_ELEMENT_TYPE& element = card.element;
    element.kind = kind;
    return TAKE_NODES(values, slots, card.id, element.nodes.data()) &&
           TAKE(values, element.material) &&
           (form == MeshForm::fv || TAKE(values, element.further[0], element.further[1])) &&
           (form != MeshForm::full || TAKE(values, element.byte)) &&
           (form != MeshForm::full || kind != 3 || values.code(element.code));
  }
};

struct GeometryCards : FormCards {
  struct Node {
    struct Place {
      double x = 0;
      double y = 0;
      float z = 0;
      std::int8_t elevation_flag = 0;
    };
    std::int32_t id = 0;
    std::uint32_t line = 0;
    Place node;
  };
  struct Element {
    struct Nodes {
      std::int32_t kind = 0;
      std::array<std::int32_t, 9> nodes{};
    };
    std::int32_t id = 0;
    std::uint32_t line = 0;
    Nodes element;
  };

  template <typename Values>
  [[gnu::always_inline]] bool take_node(Values& values, Node& card) const {
    return TAKE(values, card.id, card.node.x, card.node.y, card.node.z) &&
           (form != MeshForm::full ||
            (TAKE(values, card.node.elevation_flag) && values.skip_real() && values.skip_real() &&
             values.skip_real()));
  }

  template <typename Values, std::size_t kind>
  [[gnu::always_inline]] bool take_element(Values& values,
                                           const std::array<std::size_t, kind>& slots,
                                           Element& card) const {
    std::int32_t number = 0;
    std::int8_t byte = 0;
    std::array<char, 2> code{};
    card.element.kind = kind;
    return TAKE_NODES(values, slots, card.id, card.element.nodes.data()) && TAKE(values, number) &&
           (form == MeshForm::fv || TAKE(values, number, number)) &&
           (form != MeshForm::full || TAKE(values, byte)) &&
           (form != MeshForm::full || kind != 3 || values.code(code));
  }
};

class RecordStore {
 public:
  using Cards = RecordCards;
  using Mesh = MESH_TYPE;

  explicit RecordStore(Mesh& target);

  std::size_t nodes() const { return mesh.nodes.size(); }
  std::size_t nodes_room() const { return mesh.nodes.capacity(); }
  void reserve_nodes(std::size_t room) { mesh.nodes.reserve(room); }
  void grow_nodes(std::size_t count) { mesh.nodes.grow(count); }
  bool has_node(std::size_t index) const { return mesh.nodes[index].kind[0] != '\0'; }
  void put_node(std::size_t index, const MESH_NODE_TYPE& node) {
    mesh.nodes[index] = node;
    mesh.nodes[index].kind = initial_kind;
  }

  std::size_t elements() const { return mesh.elements.size(); }
  std::size_t elements_room() const { return mesh.elements.capacity(); }
  void reserve_elements(std::size_t room) { mesh.elements.reserve(room); }
  void grow_elements(std::size_t count) { mesh.elements.grow(count); }
  bool has_element(std::size_t index) const { return mesh.elements[index].kind != 0; }
  void put_element(std::size_t index, const MESH_ELEMENT_TYPE& element);

  void turn_to_quad9(std::size_t index);
  void finish(std::int32_t unread);

 private:
  Mesh& mesh;
  const std::array<char, 2> initial_kind;  // of a node
  bool kinds_are_marked = true;            // of the nodes of all elements so far
  std::size_t elements_end = 0;            // just after the last one put
};

class GeometryStore {
 public:
  using Cards = GeometryCards;
  using Mesh = MESH_GEOMETRY_TYPE;

  explicit GeometryStore(Mesh& target) : mesh(target) {}

  std::size_t nodes() const { return mesh.z.size(); }
  std::size_t nodes_room() const { return node_is_there.capacity(); }
  void reserve_nodes(std::size_t room);
  void grow_nodes(std::size_t count);
  bool has_node(std::size_t index) const { return node_is_there[index]; }
  void put_node(std::size_t index, const GeometryCards::Node::Place& node) {
    mesh.x[index] = node.x;
    mesh.y[index] = node.y;
    mesh.z[index] = node.z;
    node_is_there[index] = true;
  }

  std::size_t elements() const { return mesh.corners.size(); }
  std::size_t elements_room() const { return mesh.corners.capacity(); }
  void reserve_elements(std::size_t room) { mesh.corners.reserve(room); }
  void grow_elements(std::size_t count) { mesh.corners.grow(count); }
  bool has_element(std::size_t index) const { return mesh.corners[index][0] != 0; }
  void put_element(std::size_t index, const GeometryCards::Element::Nodes& element) {
    std::copy_n(element.nodes.begin(), 4, mesh.corners[index].begin());
    if (element.kind == 9) put_inner_nodes(index, element.nodes);
  }

  void turn_to_quad9(std::size_t) {}
  void finish(std::int32_t unread) const;

 private:
  void put_inner_nodes(std::size_t index, const std::array<std::int32_t, 9>& nodes);

  Mesh& mesh;
  ZeroedTable<bool> node_is_there;
};

}  // namespace quillet
