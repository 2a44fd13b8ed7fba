// The one way through the lines of a .2dm file. Helpers, where there are any, read the blocks of a
// large file ahead; what is found is put in its places, and told, in the order of the file, by the
// caller's thread.
//
// What takes the cards has routines that return false when there is nothing more to read:
//
//   place(run, text)      takes the cards of a run and the text in which their lines stand
//   take_part(line)       takes a mesh part
//   refuse_quad9()        is told of a 9-node quadrilateral that is refused
//   stop_at(line)         is told of a line whose values cannot be read, the last thing there is
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>
#include <vector>

#include "mesh/card_runs.h"
#include "support/console.h"
#include "support/input_unit.h"
#include "support/line_block.h"
#include "support/line_reader.h"
#include "support/work_crew.h"

namespace quillet {

// Takes a line that no run can take.
template <typename Cards, typename Tables>
bool TAKE_LINE(const Cards& cards, std::string_view line, Tables& tables) {
  const MeshCard card = CARD_OF(line);
  if (card == MeshCard::other) return true;
  if (card == MeshCard::part) return tables.take_part(line);
  if (card == MeshCard::quad9 && cards.quad9() == Quad9Cards::are_refused) {
    return tables.refuse_quad9();
  }
  return tables.stop_at(line);
}

// Takes what was read at the start of `text`, and goes past it.
template <typename Cards, typename Tables>
bool TAKE_RUN(const Cards& cards, const CardRun<Cards>& run, std::string_view& text,
              Tables& tables) {
  const std::string_view lines = text.substr(0, LENGTH_OF(run, text));
  text.remove_prefix(lines.size());
  return run.length > 0 ? tables.place(run, lines)
                        : TAKE_LINE(cards, LINE_AT(lines, Cards::width), tables);
}

template <typename Cards, typename Tables>
bool TAKE_LINES(const Cards& cards, std::string_view text, CardRun<Cards>& run, Tables& tables) {
  while (!text.empty()) {
    READ_RUN(cards, text, run);
    if (!TAKE_RUN(cards, run, text, tables)) return false;
  }
  return true;
}

// Reads from byte `position` on, where a line begins.
template <typename Cards, typename Tables>
void READ_CARDS_IN_ORDER(const InputUnit& file, std::int64_t position, const Cards& cards,
                         Tables& tables) {
  LineReader reader(file, Cards::width);
  reader.go_to(position);
  CardRun<Cards> run;
  for (std::string_view text; reader.next_lines(text);) {
    if (!TAKE_LINES(cards, text, run, tables)) return;
  }
}

// A block of lines that is read ahead.
template <typename Cards>
class PieceOfLines {
 public:
  static constexpr std::int64_t size = std::int64_t{256} << 10;

  PieceOfLines() : runs(most_runs) {}

  // Those that begin in piece `number` of the file, from 0.
  void start(const InputUnit& file, std::int64_t number, const Cards& cards) {
    job.start([this, &file, number, &cards] { read(file, number * size, cards); });
  }

  // Returns when it is read, if it could be: from where, and to where.
  bool has_lines_at(std::int64_t position) {
    job.finish();
    return is_read && block.begin() == position;
  }
  std::int64_t end() const { return block.end(); }

  template <typename Tables>
  bool take(const Cards& cards, Tables& tables) {
    std::string_view rest = block.lines();
    for (std::size_t i = 0; i < run_count; ++i) {
      if (!TAKE_RUN(cards, runs[i], rest, tables)) return false;
    }
    return TAKE_LINES(cards, rest, runs.front(), tables);
  }

 private:
  // Enough for a block of ordinary lines. What is beyond them, where nodes and elements alternate,
  // is read when its turn comes.
  static constexpr std::size_t most_runs = 40;

  // An unusual number takes memory: without any, the rest is read when its turn comes.
  void read(const InputUnit& file, std::int64_t from, const Cards& cards) {
    is_read = false;
    run_count = 0;
    try {
      is_read = block.read(file, from, from + size);
      if (!is_read) return;
      std::string_view rest = block.lines();
      for (; run_count < most_runs && !rest.empty(); ++run_count) {
        READ_RUN(cards, rest, runs[run_count]);
        rest.remove_prefix(LENGTH_OF(runs[run_count], rest));
      }
    } catch (const std::bad_alloc&) {
      return;
    }
  }

  LineBlock block;
  bool is_read = false;
  std::vector<CardRun<Cards>> runs;
  std::size_t run_count = 0;
  CrewJob job;  // last: it ends before what it works on
};

// Each thread has a piece to work on, and two wait. From a piece on that none can read, as with a
// line of half a MiB, the file is read in order.
template <typename Cards, typename Tables>
void READ_CARDS_AHEAD(const InputUnit& file, const Cards& cards, Tables& tables) {
  using Piece = PieceOfLines<Cards>;
  std::vector<Piece> pieces(static_cast<std::size_t>(WORK_CREW().threads()) + 2);
  const auto piece = [&](std::int64_t number) -> Piece& {
    return pieces[static_cast<std::size_t>(number) % pieces.size()];
  };
  const std::int64_t count = (file.size() + Piece::size - 1) / Piece::size;
  std::int64_t position = 0;
  std::int64_t started = 0;
  for (std::int64_t number = 0; number < count; ++number) {
    END_IF_INTERRUPTED();
    const std::int64_t end = std::min(count, number + std::ssize(pieces));
    for (; started < end; ++started) piece(started).start(file, started, cards);
    if (!piece(number).has_lines_at(position)) break;
    position = piece(number).end();
    if (!piece(number).take(cards, tables)) return;
  }
  READ_CARDS_IN_ORDER(file, position, cards, tables);
}

// Throws std::bad_alloc.
template <typename Cards, typename Tables>
void READ_CARDS(const InputUnit& file, const Cards& cards, Tables& tables) {
  // A smaller file is read in the time that it takes to start a thread and wake it.
  constexpr std::int64_t least_shared = std::int64_t{8} << 20;
  if (WORK_CREW().has_helpers() && file.size() >= least_shared) {
    READ_CARDS_AHEAD(file, cards, tables);
  } else {
    READ_CARDS_IN_ORDER(file, 0, cards, tables);
  }
}

}  // namespace quillet
