#include "mesh/read_2dm_elevations.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <string>
#include <string_view>

#include "mesh/list_values.h"
#include "mesh/mesh_cards.h"
#include "mesh/mesh_messages.h"
#include "mesh/quick_values.h"
#include "support/console.h"
#include "support/line_reader.h"

namespace quillet {
namespace {

constexpr std::size_t line_width = 100;

// Stands for an elevation that has not been read: no text reads as this.
constexpr float unread = std::numeric_limits<float>::quiet_NaN();

class ElevationCardReader {
 public:
  ElevationCardReader(const std::string& name, LargeArray<float>& z, CornerArrays& corner_arrays,
                      bool with_elements)
      : file_name(name), elevations(z), corners(corner_arrays), takes_elements(with_elements) {}

  // Takes an ordinary line of a node or an element, and returns where its values end; else null.
  const char* take_quickly(const char* text) {
    switch (ELEMENT_OR_NODE_AT(text)) {
      case MeshCard::node:
        return take_node_quickly(text);
      case MeshCard::triangle:
        return take_element_quickly(text, triangle_slots);
      case MeshCard::quad4:
        return take_element_quickly(text, quad4_slots);
      case MeshCard::quad9:
        return text;
      default:
        return nullptr;
    }
  }

  void take(std::string_view line) {
    switch (CARD_OF(line)) {
      case MeshCard::node:
        return take_node(line);
      case MeshCard::triangle:
        return take_element(line, triangle_slots);
      case MeshCard::quad4:
        return take_element(line, quad4_slots);
      default:
        return;
    }
  }

  bool has_all_nodes() const { return node_cards == elevations.size(); }

 private:
  template <typename Values>
  [[gnu::always_inline]] static bool read_node(Values& values, std::int32_t& id, float& z) {
    return TAKE(values, id) && values.skip_real() && values.skip_real() && TAKE(values, z) &&
           id >= 1;
  }

  const char* take_node_quickly(const char* text) {
    std::int32_t id = 0;
    float z = 0;
    QuickValues values(text + node_values_start);
    if (!read_node(values, id, z)) return nullptr;
    const char* const end = values.end();
    if (end == nullptr || end > text + line_width) return nullptr;
    store(id, z);
    return end;
  }

  void take_node(std::string_view line) {
    std::int32_t id = 0;
    float z = 0;
    ListValues values(line.substr(node_values_start));
    if (!read_node(values, id, z)) FAIL_ON_MESH_LINE(line);
    store(id, z);
  }

  void store(std::int32_t id, float z) {
    const auto index = static_cast<std::size_t>(id) - 1;
    if (index >= elevations.size()) fail_on_other_mesh();
    if (!std::isnan(elevations[index])) FAIL_ON_REPEATED_ID(file_name, "node", id);
    elevations[index] = z;
    ++node_cards;
  }

  [[noreturn]] static void fail_on_other_mesh() {
    SAY("ERROR - .2dm file is incompatible with .dat file whilst reading node elevations");
    EXITS();
  }

  template <typename Values, std::size_t count>
  [[gnu::always_inline]] bool read_element(Values& values,
                                           const std::array<std::size_t, count>& slots,
                                           std::int32_t& id,
                                           std::array<std::int32_t, 9>& nodes) const {
    const auto is_node = [&](std::size_t slot) {
      return nodes[slot] >= 1 && nodes[slot] <= std::ssize(elevations);
    };
    return TAKE(values, id) && TAKE_NODES(values, slots, nodes) && id >= 1 &&
           id <= std::ssize(corners[0]) && std::all_of(slots.begin(), slots.end(), is_node);
  }

  template <std::size_t count>
  const char* take_element_quickly(const char* text, const std::array<std::size_t, count>& slots) {
    if (!takes_elements) return text;
    std::int32_t id = 0;
    std::array<std::int32_t, 9> nodes{};
    QuickValues values(text + element_values_start);
    if (!read_element(values, slots, id, nodes)) return nullptr;
    const char* const end = values.end();
    if (end == nullptr || end > text + line_width) return nullptr;
    store(id, nodes);
    return end;
  }

  template <std::size_t count>
  void take_element(std::string_view line, const std::array<std::size_t, count>& slots) {
    if (!takes_elements) return;
    std::int32_t id = 0;
    std::array<std::int32_t, 9> nodes{};
    ListValues values(line.substr(element_values_start));
    if (!read_element(values, slots, id, nodes)) FAIL_ON_MESH_LINE(line);
    store(id, nodes);
  }

  void store(std::int32_t id, const std::array<std::int32_t, 9>& nodes) {
    const auto index = static_cast<std::size_t>(id) - 1;
    if (corners[0][index] != 0) FAIL_ON_REPEATED_ID(file_name, "element", id);
    for (std::size_t slot = 0; slot < corners.size(); ++slot) corners[slot][index] = nodes[slot];
  }

  const std::string& file_name;
  LargeArray<float>& elevations;
  CornerArrays& corners;
  const bool takes_elements;
  std::size_t node_cards = 0;
};

void size_arrays(LargeArray<float>& elevations, std::int32_t node_count, CornerArrays& corners,
                 std::int32_t element_count) try {
  for (auto& corner : corners) corner.assign(static_cast<std::size_t>(element_count), 0);
  elevations.assign(static_cast<std::size_t>(node_count), unread);
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

void set_missing(LargeArray<float>& elevations) {
  for (float& elevation : elevations) {
    if (std::isnan(elevation)) elevation = no_elevation;
  }
}

}  // namespace

void READ_2DM_ELEVATIONS(const InputUnit& unit, LargeArray<float>& elevations,
                         std::int32_t node_count, CornerArrays& corners,
                         std::optional<std::int32_t> element_count) {
  SAY("...reading .2dm file");
  size_arrays(elevations, node_count, corners, element_count.value_or(0));

  LineReader reader(unit, line_width);
  ElevationCardReader cards(unit.name(), elevations, corners, element_count.has_value());
  TAKE_LINES(reader, cards);
  if (cards.has_all_nodes()) return;

  set_missing(elevations);
  SAY("WARNING - Did not read an elevation for all nodes from .2dm file.");
  PAUSE();
}

}  // namespace quillet
