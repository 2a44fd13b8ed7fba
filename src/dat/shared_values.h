// Shares the values of a large output time among the crew: each share is read and handed on by
// whoever has time for it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "dat/dat_reader.h"
#include "support/large_array.h"
#include "support/work_crew.h"

namespace quillet {

// 256 KiB: a piece stays in the second cache of every processor until it has been looked at.
constexpr std::int64_t values_per_piece = 64 * 1024;

// Reads a stretch of values piece by piece and hands each piece on. `read(from, to, bytes)` reads
// what stands at a place in the file; where it returns false, nothing more is handed on and this is
// false too.
template <typename Read>
bool HAND_ON_STRETCH(const DatValues& values, const DatStretch& stretch, LargeArray<float>& piece,
                     OutputPieces& pieces, const Read& read) {
  constexpr std::int64_t value_size = sizeof(float);
  const std::int64_t end = stretch.first + stretch.count;
  for (std::int64_t first = stretch.first; first < end; first += values_per_piece) {
    const std::int64_t size = std::min(values_per_piece, end - first);
    if (!read(values.at + first * value_size, piece.data(), size * value_size)) return false;
    pieces.take_values(first / values.components, std::span(piece).first(size));
  }
  return true;
}

class SharedValues {
 public:
  // Hands all values on. `read_own` reads and hands on a stretch of values for the caller's thread,
  // and ends the run where that is not possible: all of them when there are no helpers or not much
  // to do, else a part and whatever a helper could not read.
  void hand_on(const InputUnit& file, const DatValues& values, OutputPieces& pieces,
               const std::function<void(const DatStretch& stretch)>& read_own);

 private:
  struct Share {
    DatStretch stretch;
    LargeArray<float> piece;
    bool is_read = false;
    CrewJob job;  // last: it ends before what it works on
  };

  void cut(std::int64_t count, std::int64_t share_count);
  void finish(const std::function<void(const DatStretch& stretch)>& read_own);

  std::vector<std::unique_ptr<Share>> shares;  // of which the first is the caller's
};

}  // namespace quillet
