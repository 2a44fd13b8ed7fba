#include "mesh/read_2dm.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>

#include "mesh/list_values.h"
#include "mesh/mesh_cards.h"
#include "mesh/mesh_messages.h"
#include "mesh/node_kinds.h"
#include "mesh/quick_values.h"
#include "mesh/scan_2dm.h"
#include "support/console.h"
#include "support/line_reader.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::size_t line_width = 200;
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

// Puts an item in its place in its table; false when the place is taken. The table grows item by
// item as long as the ids ascend from 1 without a gap, as they do in most files: setting it to
// nothing beforehand would be one more pass over much memory.
template <typename Item>
[[gnu::always_inline]] inline bool place(LargeArray<Item>& table, std::int32_t id,
                                         std::int32_t count, const Item& item) {
  const auto index = static_cast<std::size_t>(id) - 1;
  if (index == table.size()) {
    table.push_back(item);
    return true;
  }
  table.resize(static_cast<std::size_t>(count));
  if (is_read(table[index])) return false;
  table[index] = item;
  return true;
}

class MeshCardReader {
 public:
  MeshCardReader(const std::string& name, MESH_TYPE& target)
      : file_name(name),
        mesh(target),
        form(target.form()),
        kinds_are_marked(form != MeshForm::fv) {}

  // Takes an ordinary line of a node or an element, and returns where its values end; else null.
  const char* take_quickly(const char* text) {
    switch (ELEMENT_OR_NODE_AT(text)) {
      case MeshCard::node:
        return take_node_quickly(text);
      case MeshCard::triangle:
        return take_element_quickly<3>(text, triangle_slots);
      case MeshCard::quad4:
        return take_element_quickly<4>(text, quad4_slots);
      case MeshCard::quad9:
        return form == MeshForm::full ? take_element_quickly<9>(text, quad9_slots) : nullptr;
      default:
        return nullptr;
    }
  }

  void take(std::string_view line) {
    switch (CARD_OF(line)) {
      case MeshCard::node:
        return take_node(line);
      case MeshCard::triangle:
        return take_element<3>(line, triangle_slots);
      case MeshCard::quad4:
        return take_element<4>(line, quad4_slots);
      case MeshCard::quad9:
        if (form != MeshForm::full) return refuse_quad9();
        return take_element<9>(line, quad9_slots);
      case MeshCard::part:
        return take_part(line);
      case MeshCard::other:
        return;
    }
  }

  // The console has whole lines: what there is of the progress line is shown before anything else.
  void end_progress() {
    if (!progress.empty()) SAY(progress);
    progress.clear();
  }

  // What the file did not state stands in the tables as not read.
  void finish_tables() {
    mesh.nodes.resize(static_cast<std::size_t>(mesh.node_count));
    mesh.elements.resize(static_cast<std::size_t>(mesh.element_count));
    if (!kinds_are_marked) SET_NODE_KINDS(mesh);
  }

  void store_counts() {
    mesh.triangle_count = cards_of_kind[3];
    mesh.quad4_count = cards_of_kind[4];
    mesh.quad9_count = cards_of_kind[9];
  }

  bool has_all() const {
    return element_cards == mesh.element_count && node_cards == mesh.node_count;
  }

  void check_counts() const {
    if (element_cards != mesh.element_count) FAIL_ON_CELL_COUNT(mesh.element_count);
    if (node_cards != mesh.node_count) FAIL_ON_NODE_COUNT(mesh.node_count);
  }

 private:
  [[noreturn]] void fail_on(std::string_view line) {
    end_progress();
    FAIL_ON_MESH_LINE(line);
  }

  [[noreturn]] void fail_on_repeated(std::string_view kind, std::int32_t id) {
    end_progress();
    FAIL_ON_REPEATED_ID(file_name, kind, id);
  }

  bool is_node(std::int32_t id) const { return id >= 1 && id <= mesh.node_count; }
  bool is_element(std::int32_t id) const { return id >= 1 && id <= mesh.element_count; }

  template <typename Values>
  [[gnu::always_inline]] bool read_node(Values& values, std::int32_t& id,
                                        MESH_NODE_TYPE& node) const {
    return TAKE(values, id, node.x, node.y, node.z) &&
           (form != MeshForm::full ||
            TAKE(values, node.elevation_flag, node.further[0], node.further[1], node.further[2])) &&
           is_node(id);
  }

  const char* take_node_quickly(const char* text) {
    std::int32_t id = 0;
    MESH_NODE_TYPE node;
    QuickValues values(text + node_values_start);
    if (!read_node(values, id, node)) return nullptr;
    const char* const end = values.end();
    if (end == nullptr || end > text + line_width) return nullptr;
    return store(id, node) ? end : nullptr;
  }

  void take_node(std::string_view line) {
    std::int32_t id = 0;
    MESH_NODE_TYPE node;
    ListValues values(line.substr(node_values_start));
    if (!read_node(values, id, node)) fail_on(line);
    if (!store(id, node)) fail_on_repeated("node", id);
  }

  // False when the id has been read before.
  [[gnu::always_inline]] bool store(std::int32_t id, MESH_NODE_TYPE& node) {
    if (node.elevation_flag == 1) node.z -= mesh.z_offset;
    node.kind = no_element_node;
    if (!place(mesh.nodes, id, mesh.node_count, node)) return false;
    ++node_cards;
    mesh.x_minimum = std::min(mesh.x_minimum, node.x);
    mesh.x_maximum = std::max(mesh.x_maximum, node.x);
    mesh.y_minimum = std::min(mesh.y_minimum, node.y);
    mesh.y_maximum = std::max(mesh.y_maximum, node.y);
    return true;
  }

  template <std::size_t kind, typename Values>
  [[gnu::always_inline]] bool read_element(Values& values,
                                           const std::array<std::size_t, kind>& slots,
                                           std::int32_t& id, MESH_ELEMENT_TYPE& element) const {
    element.kind = kind;
    const auto corner_is_node = [&](std::size_t slot) { return is_node(element.nodes[slot]); };
    return TAKE(values, id) && TAKE_NODES(values, slots, element.nodes) &&
           TAKE(values, element.material) &&
           (form == MeshForm::fv || TAKE(values, element.further[0], element.further[1])) &&
           (form != MeshForm::full || TAKE(values, element.byte)) &&
           (form != MeshForm::full || kind != 3 || values.code(element.code)) && is_element(id) &&
           std::all_of(slots.begin(), slots.end(), corner_is_node);
  }

  template <std::size_t kind>
  const char* take_element_quickly(const char* text, const std::array<std::size_t, kind>& slots) {
    std::int32_t id = 0;
    MESH_ELEMENT_TYPE element;
    QuickValues values(text + element_values_start);
    if (!read_element(values, slots, id, element)) return nullptr;
    const char* const end = values.end();
    if (end == nullptr || end > text + line_width) return nullptr;
    return store(id, element) ? end : nullptr;
  }

  template <std::size_t kind>
  void take_element(std::string_view line, const std::array<std::size_t, kind>& slots) {
    std::int32_t id = 0;
    MESH_ELEMENT_TYPE element;
    ListValues values(line.substr(element_values_start));
    if (!read_element(values, slots, id, element)) fail_on(line);
    if (!store(id, element)) fail_on_repeated("element", id);
  }

  // Kinds can be marked at once while elements come in the order of their ids, after all nodes.
  // False when the id has been read before.
  [[gnu::always_inline]] bool store(std::int32_t id, const MESH_ELEMENT_TYPE& element) {
    const bool is_next = static_cast<std::size_t>(id) == mesh.elements.size() + 1;
    if (!place(mesh.elements, id, mesh.element_count, element)) return false;
    kinds_are_marked = kinds_are_marked && is_next && node_cards == mesh.node_count;
    if (kinds_are_marked) MARK_NODES_OF(element, mesh.nodes);
    last_element = id;
    ++cards_of_kind[static_cast<std::size_t>(element.kind)];
    count_element();
    return true;
  }

  void refuse_quad9() {
    end_progress();
    SAY("ERROR - Unexpected 9 point quad in FV or pre 2005 mesh.");
    if (last_element != 0) mesh.elements[static_cast<std::size_t>(last_element) - 1].kind = 9;
    kinds_are_marked = false;
    count_element();
  }

  void count_element() {
    ++element_cards;
    if (element_cards % progress_interval == 0) progress += fmt::format("{:8}", element_cards);
  }

  void take_part(std::string_view line) {
    const std::string_view rest = line.substr(std::min(part_name_start, line.size()));
    mesh.mesh_parts.push_back({SHOWN_LINE(rest.substr(0, part_name_length))});
    ++mesh.mesh_part_count;
  }

  const std::string& file_name;
  MESH_TYPE& mesh;
  const MeshForm form;
  std::int32_t node_cards = 0;
  std::int32_t element_cards = 0;
  std::array<std::int32_t, 10> cards_of_kind{};  // of the elements read
  std::int32_t last_element = 0;                 // id of the last one read; 0 none
  bool kinds_are_marked;                         // of the nodes of all elements so far
  std::string progress = "Element:";
};

// Reads no further than to the first line that is not ordinary, and so says nothing and never ends
// the run.
class OrdinaryCardReader {
 public:
  OrdinaryCardReader(LineReader& line_reader, MeshCardReader& mesh_cards)
      : reader(line_reader), cards(mesh_cards) {}

  const char* take_quickly(const char* text) { return cards.take_quickly(text); }

  // An ordinary line may come here too, where a block of the file ends within it.
  void take(std::string_view line) {
    const MeshCard card = CARD_OF(line);
    if (card == MeshCard::other) return;
    if (card == MeshCard::part) return cards.take(line);
    if (cards.take_quickly(line.data()) != nullptr) return;
    is_ordinary = false;
    reader.pass_all();
  }

  bool took_all() const { return is_ordinary && cards.has_all(); }

 private:
  LineReader& reader;
  MeshCardReader& cards;
  bool is_ordinary = true;
};

void say_start() {
  SAY("Rewinding .2dm file...");
  SAY("   Done.");
  SAY("...reading .2dm file");
}

void finish(MeshCardReader& cards) {
  cards.end_progress();
  SAY("Finished Reading .2dm file");
  cards.finish_tables();
  cards.check_counts();
}

}  // namespace

void READ_2DM(const InputUnit& unit, MESH_TYPE& mesh) {
  say_start();
  LineReader reader(unit, line_width);
  MeshCardReader cards(unit.name(), mesh);
  TAKE_LINES(reader, cards);
  finish(cards);
}

bool READ_2DM_AT_ONCE(const InputUnit& unit, MESH_TYPE& mesh) {
  LineReader reader(unit, line_width);
  MeshCardReader cards(unit.name(), mesh);
  OrdinaryCardReader ordinary_cards(reader, cards);
  TAKE_LINES(reader, ordinary_cards);
  if (!ordinary_cards.took_all()) return false;

  cards.store_counts();
  FINISH_2DM_SCAN(mesh);
  say_start();
  finish(cards);
  return true;
}

}  // namespace quillet
