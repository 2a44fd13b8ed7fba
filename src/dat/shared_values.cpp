#include "dat/shared_values.h"

#include <algorithm>

namespace quillet {
namespace {

// Less takes no longer than to wake a thread.
constexpr std::int64_t least_values_per_share = 4 * values_per_piece;

std::int64_t share_count_of(std::int64_t values) {
  if (!WORK_CREW().has_helpers()) return 1;
  // More shares than threads, as some threads begin late.
  return std::min<std::int64_t>(values / least_values_per_share, 2 * WORK_CREW().threads());
}

}  // namespace

void SharedValues::hand_on(const InputUnit& file, const DatValues& values, OutputPieces& pieces,
                           const std::function<void(const DatStretch& stretch)>& read_own) {
  const std::int64_t share_count = share_count_of(values.count);
  if (share_count < 2) return read_own({0, values.count});
  cut(values.count, share_count);
  // Where the run ends meanwhile, nobody works on with what is gone.
  const auto take_back = [](SharedValues* own) {
    for (const auto& share : own->shares) share->job.take_back();
  };
  const std::unique_ptr<SharedValues, decltype(take_back)> ending(this, take_back);
  for (std::size_t i = 1; i < shares.size(); ++i) {
    Share& share = *shares[i];
    share.job.start([&] {
      share.is_read = HAND_ON_STRETCH(values, share.stretch, share.piece, pieces,
                                      [&](std::int64_t from, float* to, std::int64_t bytes) {
                                        return file.try_to_read_at(from, to, bytes) == bytes;
                                      });
    });
  }
  finish(read_own);
}

// Into shares of whole pieces, so that every value is read with the same others however many
// threads there are.
void SharedValues::cut(std::int64_t count, std::int64_t share_count) {
  const std::int64_t piece_count = (count + values_per_piece - 1) / values_per_piece;
  const auto start_of = [&](std::int64_t share) {
    return std::min(piece_count * share / share_count * values_per_piece, count);
  };
  shares.resize(static_cast<std::size_t>(share_count));
  for (std::int64_t i = 0; i < share_count; ++i) {
    auto& share = shares[static_cast<std::size_t>(i)];
    if (!share) share = std::make_unique<Share>();
    share->stretch = {start_of(i), start_of(i + 1) - start_of(i)};
    if (i > 0) share->piece.resize(values_per_piece);
  }
}

void SharedValues::finish(const std::function<void(const DatStretch& stretch)>& read_own) {
  read_own(shares.front()->stretch);
  for (std::size_t i = 1; i < shares.size(); ++i) {
    shares[i]->job.finish();
    if (!shares[i]->is_read) read_own(shares[i]->stretch);
  }
}

}  // namespace quillet
