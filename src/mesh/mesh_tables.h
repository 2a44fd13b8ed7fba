// Puts the cards of a .2dm file in their places.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mesh/mesh_stores.h"

namespace quillet {

// Why the reading stopped before the end of the file.
struct MESH_FAILURE_TYPE {
  std::string line;           // that cannot be read or used, or
  std::string_view repeated;  // "node" or "element" whose id stands twice, and
  std::int32_t id = 0;        // that id
};

// Store: see mesh_stores.h.
template <typename Store>
class MeshTables {
 public:
  using Cards = typename Store::Cards;
  using Mesh = typename Store::Mesh;

  // Ids and nodes of elements are at most `most_nodes` and `most_elements`, for which the tables
  // grow as they are needed; how fast follows from the bytes of the file that are still to come.
  MeshTables(std::int64_t file_bytes, std::int32_t most_nodes, std::int32_t most_elements,
             Mesh& target);

  // See READ_CARDS. They throw std::bad_alloc.
  bool place(const CardRun<Cards>& run, std::string_view text);
  bool take_part(std::string_view line);
  bool refuse_quad9();
  bool stop_at(std::string_view line);

  const std::optional<MESH_FAILURE_TYPE>& failure() const { return failed; }

  // Whether all ids and all nodes of elements are within the numbers of cards.
  bool is_complete() const;

  // Sets the counts of the mesh to the numbers of cards; or ends the run when they differ.
  void store_counts();
  void check_counts(std::string_view file_name) const;

  // What the file did not state stands in the tables as not read, and what the store makes of all
  // is there.
  void finish();

  // What is to be said of the reading: the progress line, and complaints in their places.
  const std::vector<std::string>& console();

 private:
  bool place_node(const typename Cards::Node& card);
  bool place_element(const typename Cards::Element& card);
  bool stop_at_repeated(std::string_view kind, std::int32_t id);
  std::size_t likely_room(std::size_t count, std::int32_t id, std::int32_t most) const;
  void make_node_room(std::int32_t id);
  void make_element_room(std::int32_t id);
  void count_element(std::int32_t kind);
  void end_progress();

  const std::int32_t node_limit;
  const std::int32_t element_limit;
  Mesh& mesh;
  Store store;
  std::int64_t bytes_to_come;
  std::size_t bytes_per_card = 1;  // in the run being placed
  std::int32_t node_cards = 0;
  std::int32_t element_cards = 0;
  std::array<std::int32_t, 10> cards_of_kind{};
  std::int32_t refused_cards = 0;
  std::int32_t last_element = 0;  // id of the last one read; 0 none
  std::int32_t highest_corner = 0;
  std::string progress = "Element:";
  std::vector<std::string> lines_to_say;
  std::optional<MESH_FAILURE_TYPE> failed;
};

extern template class MeshTables<RecordStore>;
extern template class MeshTables<GeometryStore>;

}  // namespace quillet
