// Puts the cards of a .2dm file in their places in the mesh record.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mesh/card_runs.h"
#include "mesh/mesh.h"
#include "support/line_reader.h"

namespace quillet {

// All values of the cards, as the form has them (see READ_CARDS).
struct MeshCards {
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
  static constexpr std::size_t width = 200;

  MeshForm form;

  Quad9Cards quad9() const {
    return form == MeshForm::full ? Quad9Cards::are_read : Quad9Cards::are_refused;
  }

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

// Why the reading stopped before the end of the file.
struct MESH_FAILURE_TYPE {
  std::string line;           // that cannot be read or used, or
  std::string_view repeated;  // "node" or "element" whose id stands twice, and
  std::int32_t id = 0;        // that id
};

class MeshTables {
 public:
  // Ids and nodes of elements are at most `most_nodes` and `most_elements`, for which the tables
  // grow as they are needed. The reader tells how much is still to come.
  MeshTables(const LineReader& line_reader, std::int32_t most_nodes, std::int32_t most_elements,
             MESH_TYPE& target);

  // See READ_CARDS. They throw std::bad_alloc.
  bool place(const CardRun<MeshCards>& run, std::string_view text);
  bool take_part(std::string_view line);
  bool refuse_quad9();
  bool stop_at(std::string_view line);

  const std::optional<MESH_FAILURE_TYPE>& failure() const { return failed; }

  // Whether all ids and all nodes of elements are within the numbers of cards.
  bool is_complete() const;

  // Sets the counts of the mesh to the numbers of cards; or ends the run when they differ.
  void store_counts();
  void check_counts(std::string_view file_name) const;

  // What the file did not state stands in the tables as not read, and the nodes have their kinds.
  void finish();

  // What is to be said of the reading: the progress line, and complaints in their places.
  const std::vector<std::string>& console();

 private:
  bool place_node(const MeshCards::Node& card);
  bool place_element(const MeshCards::Element& card);
  bool stop_at_repeated(std::string_view kind, std::int32_t id);
  template <typename Item>
  void make_room(ZeroedTable<Item>& table, std::int32_t id, std::int32_t most) const;
  void mark_kinds(const MeshCards::Element& card);
  void count_element(std::int32_t kind);
  void end_progress();

  const LineReader& reader;
  const std::int32_t node_limit;
  const std::int32_t element_limit;
  MESH_TYPE& mesh;
  std::size_t bytes_per_card = 1;  // in the run being placed
  std::int32_t node_cards = 0;
  std::int32_t element_cards = 0;
  std::array<std::int32_t, 10> cards_of_kind{};
  std::int32_t last_element = 0;  // id of the last one read; 0 none
  std::int32_t highest_corner = 0;
  const std::array<char, 2> initial_kind;  // of a node
  bool kinds_are_marked = true;            // of the nodes of all elements so far
  std::string progress = "Element:";
  std::vector<std::string> lines_to_say;
  std::optional<MESH_FAILURE_TYPE> failed;
};

}  // namespace quillet
