// A block of lines of a .2dm file becomes runs of cards: values and nothing else, which are put in
// their places afterwards (see READ_CARDS). What a run holds depends on its text alone.
//
// What is kept of a card is up to who reads (RecordCards all of it, others less). Each has
//
//   Node, Element      records with `id` and `line`, where the card began: characters from the
//                      start of the text of its run
//   take_node(values, node), take_element(values, slots, element)
//                      take what is kept from QuickValues or ListValues; false when a value cannot
//                      be read
//   quad9()            what becomes of cards of 9-node quadrilaterals
//   width              characters of a line that are read
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "mesh/list_values.h"
#include "mesh/mesh_cards.h"
#include "mesh/quick_values.h"
#include "support/line_reader.h"

namespace quillet {

enum class Quad9Cards { are_read, are_passed_over, are_refused };

// Cards of one table that follow each other in the file, so few that they stay in the first caches.
template <typename Cards>
struct CardRun {
  static constexpr std::size_t most = 256;

  std::array<typename Cards::Node, most> nodes;
  std::array<typename Cards::Element, most> elements;
  std::size_t node_count = 0;  // one of the counts is 0
  std::size_t element_count = 0;
  std::size_t length = 0;             // of its lines
  std::array<DigitRuns, 4> digits{};  // of the last line of each card

  void clear() { node_count = element_count = length = 0; }

  // Whether the card belongs to the table of the others, and has room.
  bool takes(MeshCard card) const {
    return card == MeshCard::node ? element_count == 0 && node_count < most
                                  : node_count == 0 && element_count < most;
  }

  void keep(MeshCard card, std::size_t line) {
    const auto place = static_cast<std::uint32_t>(line);
    if (card == MeshCard::node) {
      nodes[node_count++].line = place;
    } else {
      elements[element_count++].line = place;
    }
  }
};

// Takes the values of a card into the next place of the run, where it is not kept yet.
template <typename Cards, typename Values>
[[gnu::always_inline]] inline bool TAKE_VALUES(const Cards& cards, MeshCard card, Values& values,
                                               CardRun<Cards>& run) {
  if (card == MeshCard::node) {
    auto& node = run.nodes[run.node_count];
    node = {};
    return cards.take_node(values, node);
  }
  auto& element = run.elements[run.element_count];
  element = {};
  if (card == MeshCard::triangle) return cards.take_element(values, triangle_slots, element);
  if (card == MeshCard::quad4) return cards.take_element(values, quad4_slots, element);
  return cards.take_element(values, quad9_slots, element);
}

// Takes the card of an ordinary line. Returns where its values end; null for any other line.
template <typename Cards>
[[gnu::always_inline]] inline const char* TAKE_QUICKLY(const Cards& cards, MeshCard card,
                                                       const char* line, const char* text_end,
                                                       CardRun<Cards>& run) {
  const bool is_node = card == MeshCard::node;
  QuickValues values(line + (is_node ? node_values_start : element_values_start), text_end,
                     run.digits[static_cast<std::size_t>(card)]);
  if (!TAKE_VALUES(cards, card, values, run)) return nullptr;
  const char* const end = values.end();
  return end != nullptr && end <= line + Cards::width ? end : nullptr;
}

// Takes the card of a line in whatever form it is written; false when a value cannot be read.
template <typename Cards>
[[gnu::noinline]] bool TAKE_SLOWLY(const Cards& cards, MeshCard card, std::string_view text,
                                   CardRun<Cards>& run) {
  const std::string_view line = LINE_AT(text, Cards::width);
  ListValues values(line.substr(card == MeshCard::node ? node_values_start : element_values_start));
  return TAKE_VALUES(cards, card, values, run);
}

// Reads the lines at the start of `text` (whole lines) into the run, as far as their cards belong
// to one table and it has room, and passes over lines that say nothing. run.length becomes the
// length of what it read: 0 when the first line is one that no run can take.
template <typename Cards>
void READ_RUN(const Cards& cards, std::string_view text, CardRun<Cards>& run) {
  const char* const start = text.data();
  const char* const end = start + text.size();
  const char* line = start;
  run.clear();
  while (line != end) {
    const char* place = line;
    const MeshCard card = ELEMENT_OR_NODE_AT(line);
    if (card == MeshCard::other) {
      if (*line == mesh_part_card[0]) break;
    } else if (card != MeshCard::quad9 || cards.quad9() == Quad9Cards::are_read) {
      if (!run.takes(card)) break;
      place = TAKE_QUICKLY(cards, card, line, end, run);
      if (place == nullptr) {
        place = line;
        const std::string_view rest(line, static_cast<std::size_t>(end - line));
        if (!TAKE_SLOWLY(cards, card, rest, run)) break;
      }
      run.keep(card, static_cast<std::size_t>(line - start));
    } else if (cards.quad9() == Quad9Cards::are_refused) {
      break;
    }
    if (*place != '\n') {
      place =
          static_cast<const char*>(std::memchr(place, '\n', static_cast<std::size_t>(end - place)));
    }
    line = place + 1;
  }
  run.length = static_cast<std::size_t>(line - start);
}

// Length of the lines at the start of `text` that a run read there stands for: its own, or that of
// the one line that no run can take.
template <typename Cards>
std::size_t LENGTH_OF(const CardRun<Cards>& run, std::string_view text) {
  return run.length > 0 ? run.length : text.find('\n') + 1;
}

}  // namespace quillet
