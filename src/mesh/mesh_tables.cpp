#include "mesh/mesh_tables.h"

#include <fmt/format.h>

#include <algorithm>

#include "mesh/mesh_messages.h"

namespace quillet {
namespace {

constexpr std::size_t part_name_start = 9;
constexpr std::size_t part_name_length = 100;

// Elements between two counts on the progress line.
constexpr std::int32_t progress_interval = 10000;

}  // namespace

template <typename Store>
MeshTables<Store>::MeshTables(std::int64_t file_bytes, std::int32_t most_nodes,
                              std::int32_t most_elements, Mesh& target)
    : node_limit(most_nodes),
      element_limit(most_elements),
      mesh(target),
      store(target),
      bytes_to_come(file_bytes) {}

template <typename Store>
bool MeshTables<Store>::place(const CardRun<Cards>& run, std::string_view text) {
  const std::size_t cards = run.node_count + run.element_count;
  if (cards == 0) return true;
  bytes_per_card = text.size() / cards + 1;
  const auto line_of = [&](std::size_t start) { return LINE_AT(text.substr(start), Cards::width); };
  for (std::size_t i = 0; i < run.node_count; ++i) {
    if (!place_node(run.nodes[i])) return !failed && stop_at(line_of(run.nodes[i].line));
  }
  for (std::size_t i = 0; i < run.element_count; ++i) {
    if (!place_element(run.elements[i])) return !failed && stop_at(line_of(run.elements[i].line));
  }
  bytes_to_come -= std::ssize(text);
  return true;
}

// For a table of `count` items that needs the place of `id`: as many as there may be if the cards
// to come are like those of this run.
template <typename Store>
std::size_t MeshTables<Store>::likely_room(std::size_t count, std::int32_t id,
                                           std::int32_t most) const {
  const auto wanted = static_cast<std::size_t>(id);
  const std::size_t to_come =
      static_cast<std::size_t>(std::max<std::int64_t>(bytes_to_come, 0)) / bytes_per_card;
  return std::clamp(count + to_come + to_come / 8, wanted, static_cast<std::size_t>(most));
}

template <typename Store>
void MeshTables<Store>::make_node_room(std::int32_t id) {
  const auto count = static_cast<std::size_t>(id);
  if (count > store.nodes_room()) {
    store.reserve_nodes(likely_room(store.nodes(), id, node_limit));
  }
  store.grow_nodes(count);
}

template <typename Store>
void MeshTables<Store>::make_element_room(std::int32_t id) {
  const auto count = static_cast<std::size_t>(id);
  if (count > store.elements_room()) {
    store.reserve_elements(likely_room(store.elements(), id, element_limit));
  }
  store.grow_elements(count);
}

template <typename Store>
bool MeshTables<Store>::place_node(const typename Cards::Node& card) {
  if (card.id < 1 || card.id > node_limit) return false;
  const auto index = static_cast<std::size_t>(card.id) - 1;
  if (index >= store.nodes()) make_node_room(card.id);
  if (store.has_node(index)) return stop_at_repeated("node", card.id);
  auto node = card.node;
  if (node.elevation_flag == 1) node.z -= mesh.z_offset;
  store.put_node(index, node);
  ++node_cards;
  mesh.x_minimum = std::min(mesh.x_minimum, node.x);
  mesh.x_maximum = std::max(mesh.x_maximum, node.x);
  mesh.y_minimum = std::min(mesh.y_minimum, node.y);
  mesh.y_maximum = std::max(mesh.y_maximum, node.y);
  return true;
}

template <typename Store>
bool MeshTables<Store>::place_element(const typename Cards::Element& card) {
  if (card.id < 1 || card.id > element_limit) return false;
  for (std::int32_t slot = 0; slot < card.element.kind; ++slot) {
    const std::int32_t corner = card.element.nodes[static_cast<std::size_t>(slot)];
    if (corner < 1 || corner > node_limit) return false;
    highest_corner = std::max(highest_corner, corner);
  }
  const auto index = static_cast<std::size_t>(card.id) - 1;
  if (index >= store.elements()) make_element_room(card.id);
  if (store.has_element(index)) return stop_at_repeated("element", card.id);
  store.put_element(index, card.element);
  last_element = card.id;
  count_element(card.element.kind);
  return true;
}

template <typename Store>
bool MeshTables<Store>::take_part(std::string_view line) {
  const std::string_view rest = line.substr(std::min(part_name_start, line.size()));
  mesh.mesh_parts.push_back({SHOWN_LINE(rest.substr(0, part_name_length))});
  ++mesh.mesh_part_count;
  return true;
}

template <typename Store>
bool MeshTables<Store>::refuse_quad9() {
  end_progress();
  lines_to_say.emplace_back("ERROR - Unexpected 9 point quad in FV or pre 2005 mesh.");
  if (last_element != 0) store.turn_to_quad9(static_cast<std::size_t>(last_element) - 1);
  ++refused_cards;
  count_element(9);
  return true;
}

template <typename Store>
bool MeshTables<Store>::stop_at(std::string_view line) {
  failed = {std::string(line), {}, 0};
  return false;
}

template <typename Store>
bool MeshTables<Store>::stop_at_repeated(std::string_view kind, std::int32_t id) {
  failed = {{}, kind, id};
  return false;
}

template <typename Store>
void MeshTables<Store>::count_element(std::int32_t kind) {
  ++cards_of_kind[static_cast<std::size_t>(kind)];
  ++element_cards;
  if (element_cards % progress_interval == 0) progress += fmt::format("{:8}", element_cards);
}

template <typename Store>
void MeshTables<Store>::end_progress() {
  if (!progress.empty()) lines_to_say.push_back(progress);
  progress.clear();
}

template <typename Store>
const std::vector<std::string>& MeshTables<Store>::console() {
  end_progress();
  return lines_to_say;
}

template <typename Store>
bool MeshTables<Store>::is_complete() const {
  return store.nodes() <= static_cast<std::size_t>(node_cards) &&
         store.elements() <= static_cast<std::size_t>(element_cards) &&
         highest_corner <= node_cards;
}

template <typename Store>
void MeshTables<Store>::store_counts() {
  mesh.node_count = node_cards;
  mesh.element_count = element_cards;
  mesh.triangle_count = cards_of_kind[3];
  mesh.quad4_count = cards_of_kind[4];
  mesh.quad9_count = cards_of_kind[9];
}

template <typename Store>
void MeshTables<Store>::check_counts(std::string_view file_name) const {
  const MESH_COUNTS_TYPE found{file_name, node_cards, element_cards};
  if (element_cards != mesh.element_count) FAIL_ON_CELL_COUNT(found, mesh.element_count);
  if (node_cards != mesh.node_count) FAIL_ON_NODE_COUNT(found, mesh.node_count);
}

template <typename Store>
void MeshTables<Store>::finish() {
  store.grow_nodes(static_cast<std::size_t>(mesh.node_count));
  store.grow_elements(static_cast<std::size_t>(mesh.element_count));
  store.finish(refused_cards);
}

template class MeshTables<RecordStore>;
template class MeshTables<GeometryStore>;

}  // namespace quillet
