#include "mesh/mesh_tables.h"

#include <fmt/format.h>

#include <algorithm>

#include "mesh/mesh_messages.h"
#include "mesh/node_kinds.h"

namespace quillet {
namespace {

constexpr std::size_t part_name_start = 9;
constexpr std::size_t part_name_length = 100;

// Elements between two counts on the progress line.
constexpr std::int32_t progress_interval = 10000;

bool is_read(const MESH_NODE_TYPE& node) {
  return node.kind[0] != '\0';
}

bool is_read(const MESH_ELEMENT_TYPE& element) {
  return element.kind != 0;
}

}  // namespace

MeshTables::MeshTables(const LineReader& line_reader, std::int32_t most_nodes,
                       std::int32_t most_elements, MESH_TYPE& target)
    : reader(line_reader),
      node_limit(most_nodes),
      element_limit(most_elements),
      mesh(target),
      initial_kind(target.fv_mesh ? fv_node : no_element_node) {}

bool MeshTables::place(const CardRun<MeshCards>& run, std::string_view text) {
  const std::size_t cards = run.node_count + run.element_count;
  if (cards == 0) return true;
  bytes_per_card = text.size() / cards + 1;
  const auto line_of = [&](std::size_t start) {
    return LINE_AT(text.substr(start), MeshCards::width);
  };
  for (std::size_t i = 0; i < run.node_count; ++i) {
    if (!place_node(run.nodes[i])) return !failed && stop_at(line_of(run.nodes[i].line));
  }
  for (std::size_t i = 0; i < run.element_count; ++i) {
    if (!place_element(run.elements[i])) return !failed && stop_at(line_of(run.elements[i].line));
  }
  return true;
}

// Room for as many cards as there may be if those to come are like those of this run.
template <typename Item>
void MeshTables::make_room(ZeroedTable<Item>& table, std::int32_t id, std::int32_t most) const {
  const auto wanted = static_cast<std::size_t>(id);
  if (wanted > table.capacity()) {
    const auto bytes = static_cast<std::size_t>(reader.bytes_left()) + LineReader::usual_block_size;
    const std::size_t to_come = bytes / bytes_per_card;
    const std::size_t likely = table.size() + to_come + to_come / 8;
    table.reserve(std::clamp(likely, wanted, static_cast<std::size_t>(most)));
  }
  table.grow(wanted);
}

bool MeshTables::place_node(const MeshCards::Node& card) {
  if (card.id < 1 || card.id > node_limit) return false;
  const auto index = static_cast<std::size_t>(card.id) - 1;
  if (index >= mesh.nodes.size()) make_room(mesh.nodes, card.id, node_limit);
  MESH_NODE_TYPE& node = mesh.nodes[index];
  if (is_read(node)) return stop_at_repeated("node", card.id);
  node = card.node;
  if (node.elevation_flag == 1) node.z -= mesh.z_offset;
  node.kind = initial_kind;
  ++node_cards;
  mesh.x_minimum = std::min(mesh.x_minimum, node.x);
  mesh.x_maximum = std::max(mesh.x_maximum, node.x);
  mesh.y_minimum = std::min(mesh.y_minimum, node.y);
  mesh.y_maximum = std::max(mesh.y_maximum, node.y);
  return true;
}

bool MeshTables::place_element(const MeshCards::Element& card) {
  if (card.id < 1 || card.id > element_limit) return false;
  for (std::int32_t slot = 0; slot < card.element.kind; ++slot) {
    const std::int32_t corner = card.element.nodes[static_cast<std::size_t>(slot)];
    if (corner < 1 || corner > node_limit) return false;
    highest_corner = std::max(highest_corner, corner);
  }
  const auto index = static_cast<std::size_t>(card.id) - 1;
  if (index >= mesh.elements.size()) make_room(mesh.elements, card.id, element_limit);
  MESH_ELEMENT_TYPE& element = mesh.elements[index];
  if (is_read(element)) return stop_at_repeated("element", card.id);
  element = card.element;
  mark_kinds(card);
  last_element = card.id;
  count_element(element.kind);
  return true;
}

// Kinds can be marked at once while elements come in the order of their ids, after their nodes.
void MeshTables::mark_kinds(const MeshCards::Element& card) {
  if (mesh.fv_mesh || !kinds_are_marked) return;
  const auto is_there = [&](std::int32_t id) {
    const auto index = static_cast<std::size_t>(id) - 1;
    return index < mesh.nodes.size() && is_read(mesh.nodes[index]);
  };
  const auto& nodes = card.element.nodes;
  kinds_are_marked = card.id > last_element &&
                     std::all_of(nodes.begin(), nodes.begin() + card.element.kind, is_there);
  if (kinds_are_marked) MARK_NODES_OF(card.element, mesh.nodes);
}

bool MeshTables::take_part(std::string_view line) {
  const std::string_view rest = line.substr(std::min(part_name_start, line.size()));
  mesh.mesh_parts.push_back({SHOWN_LINE(rest.substr(0, part_name_length))});
  ++mesh.mesh_part_count;
  return true;
}

bool MeshTables::refuse_quad9() {
  end_progress();
  lines_to_say.emplace_back("ERROR - Unexpected 9 point quad in FV or pre 2005 mesh.");
  if (last_element != 0) mesh.elements[static_cast<std::size_t>(last_element) - 1].kind = 9;
  kinds_are_marked = false;
  count_element(9);
  return true;
}

bool MeshTables::stop_at(std::string_view line) {
  failed = {std::string(line), {}, 0};
  return false;
}

bool MeshTables::stop_at_repeated(std::string_view kind, std::int32_t id) {
  failed = {{}, kind, id};
  return false;
}

void MeshTables::count_element(std::int32_t kind) {
  ++cards_of_kind[static_cast<std::size_t>(kind)];
  ++element_cards;
  if (element_cards % progress_interval == 0) progress += fmt::format("{:8}", element_cards);
}

void MeshTables::end_progress() {
  if (!progress.empty()) lines_to_say.push_back(progress);
  progress.clear();
}

const std::vector<std::string>& MeshTables::console() {
  end_progress();
  return lines_to_say;
}

bool MeshTables::is_complete() const {
  return std::ssize(mesh.nodes) <= node_cards && std::ssize(mesh.elements) <= element_cards &&
         highest_corner <= node_cards;
}

void MeshTables::store_counts() {
  mesh.node_count = node_cards;
  mesh.element_count = element_cards;
  mesh.triangle_count = cards_of_kind[3];
  mesh.quad4_count = cards_of_kind[4];
  mesh.quad9_count = cards_of_kind[9];
}

void MeshTables::check_counts(std::string_view file_name) const {
  const MESH_COUNTS_TYPE found{file_name, node_cards, element_cards};
  if (element_cards != mesh.element_count) FAIL_ON_CELL_COUNT(found, mesh.element_count);
  if (node_cards != mesh.node_count) FAIL_ON_NODE_COUNT(found, mesh.node_count);
}

void MeshTables::finish() {
  mesh.nodes.grow(static_cast<std::size_t>(mesh.node_count));
  mesh.elements.grow(static_cast<std::size_t>(mesh.element_count));
  if (!kinds_are_marked) SET_NODE_KINDS(mesh);
}

}  // namespace quillet
