#include "mesh/read_2dm_elevations.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <string_view>

#include "mesh/mesh_messages.h"
#include "mesh/read_cards.h"
#include "mesh/seen_ids.h"
#include "support/console.h"
#include "support/line_reader.h"
#include "support/text.h"

namespace quillet {
namespace {

// Stands for an elevation that has not been read: no text reads as this.
constexpr float unread = std::numeric_limits<float>::quiet_NaN();

// No card of an element is shorter.
constexpr std::int64_t shortest_element = 12;

// What all forms begin with.
struct ElevationCards {
  struct Node {
    std::int32_t id = 0;
    std::uint32_t line = 0;
    float z = 0;
  };
  struct Element {
    std::int32_t id = 0;
    std::uint32_t line = 0;
    std::uint32_t corner_count = 0;
    std::array<std::int32_t, 4> corners{};
  };
  static constexpr std::size_t width = 100;

  static constexpr Quad9Cards quad9() { return Quad9Cards::are_passed_over; }

  template <typename Values>
  [[gnu::always_inline]] static bool take_node(Values& values, Node& card) {
    return TAKE(values, card.id) && values.skip_real() && values.skip_real() &&
           TAKE(values, card.z);
  }

  template <typename Values, std::size_t count>
  [[gnu::always_inline]] static bool take_element(Values& values,
                                                  const std::array<std::size_t, count>& slots,
                                                  Element& card) {
    if constexpr (count > 4) {
      return false;
    } else {
      card.corner_count = count;
      return TAKE_NODES(values, slots, card.id, card.corners.data());
    }
  }
};

class ElevationTables {
 public:
  ElevationTables(const InputUnit& mesh_file, LargeArray<float>& z, CornerArrays& corner_arrays,
                  std::optional<std::int32_t> count)
      : unit(mesh_file),
        elevations(z),
        corners(corner_arrays),
        element_count(count),
        seen_elements(static_cast<std::size_t>(unit.size() / shortest_element)) {}

  bool place(const CardRun<ElevationCards>& run, std::string_view text) {
    const auto line_of = [&](std::size_t start) {
      return LINE_AT(text.substr(start), ElevationCards::width);
    };
    for (std::size_t i = 0; i < run.node_count; ++i) {
      if (!place_node(run.nodes[i])) FAIL_ON_MESH_LINE(line_of(run.nodes[i].line));
    }
    for (std::size_t i = 0; i < run.element_count; ++i) {
      if (!place_element(run.elements[i])) FAIL_ON_MESH_LINE(line_of(run.elements[i].line));
    }
    return true;
  }

  static bool take_part(std::string_view) { return true; }
  static bool refuse_quad9() { return true; }
  [[noreturn]] static bool stop_at(std::string_view line) { FAIL_ON_MESH_LINE(line); }

  std::size_t node_count() const { return node_cards; }

 private:
  bool place_node(const ElevationCards::Node& card) {
    if (card.id < 1) return false;
    const auto index = static_cast<std::size_t>(card.id) - 1;
    if (index >= elevations.size()) fail_on_other_mesh(card.id);
    if (!std::isnan(elevations[index])) FAIL_ON_REPEATED_ID(unit.name(), "node", card.id);
    elevations[index] = card.z;
    ++node_cards;
    return true;
  }

  bool place_element(const ElevationCards::Element& card) {
    const auto& nodes = card.corners;
    const auto most_nodes = static_cast<std::int32_t>(elevations.size());
    for (std::size_t slot = 0; slot < card.corner_count; ++slot) {
      if (nodes[slot] < 1 || nodes[slot] > most_nodes) return false;
    }
    if (card.id < 1 || card.id > element_count.value_or(card.id)) return false;
    if (!seen_elements.meet(card.id)) FAIL_ON_REPEATED_ID(unit.name(), "element", card.id);
    if (!element_count) return true;
    const auto index = static_cast<std::size_t>(card.id) - 1;
    for (std::size_t slot = 0; slot < corners.size(); ++slot) corners[slot][index] = nodes[slot];
    return true;
  }

  [[noreturn]] void fail_on_other_mesh(std::int32_t id) const {
    SAY("ERROR - .2dm file is incompatible with .dat file whilst reading node elevations");
    HELP_WITH_OTHER_MESH(fmt::format("Found in {}: node {}, expected {} nodes at most.",
                                     QUOTED(unit.name()), id, elevations.size()));
    EXITS();
  }

  const InputUnit& unit;
  LargeArray<float>& elevations;
  CornerArrays& corners;
  const std::optional<std::int32_t> element_count;
  SeenIds seen_elements;
  std::size_t node_cards = 0;
};

void size_arrays(LargeArray<float>& elevations, std::int32_t node_count, CornerArrays& corners,
                 std::int32_t element_count) {
  for (auto& corner : corners) corner.assign(static_cast<std::size_t>(element_count), 0);
  elevations.assign(static_cast<std::size_t>(node_count), unread);
}

void set_missing(LargeArray<float>& elevations) {
  for (float& elevation : elevations) {
    if (std::isnan(elevation)) elevation = no_elevation;
  }
}

}  // namespace

void READ_2DM_ELEVATIONS(const InputUnit& unit, LargeArray<float>& elevations,
                         std::int32_t node_count, CornerArrays& corners,
                         std::optional<std::int32_t> element_count) try {
  SAY("...reading .2dm file");
  size_arrays(elevations, node_count, corners, element_count.value_or(0));

  ElevationTables tables(unit, elevations, corners, element_count);
  READ_CARDS(unit, ElevationCards{}, tables);
  if (tables.node_count() == elevations.size()) return;

  set_missing(elevations);
  SAY("WARNING - Did not read an elevation for all nodes from .2dm file.");
  HELP_WITH_OTHER_MESH(fmt::format("Found in {}: nodes {}, expected {}.", QUOTED(unit.name()),
                                   tables.node_count(), elevations.size()));
  PAUSE();
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace quillet
