// The bytes of a binary .dat dataset. Little-endian, no record markers, no padding.
//
//   header       int4 3000 (the version; read as an unknown card)
//                cards, each an int4 code and its items:
//                  100 int4 object type      110 int4 size of a real    120 int4 size of a status
//                  130 scalar dataset        140 vector dataset (the later of both holds)
//                  150 int4 vector type      160 int4 object id
//                  170 int4 node count       180 int4 cell count        190 char40 dataset name
//                any other code is skipped
//   output time  int4 200
//                int1 status-present flag    1: statuses follow; other values: those of the output
//                                            time before stay in force
//                real4 time (hours)
//                int1 status per cell        only when the flag is 1
//                real4 value per node, or real4 x, real4 y per node
//   end          int4 210
//
// The end card may be missing. A vector file that this program wrote as a maximum or minimum (its
// first output time is 111111) holds one value per node at the marker times 222222 and 333333.
#pragma once

#include <bit>
#include <cstdint>

namespace quillet {

static_assert(std::endian::native == std::endian::little, ".dat files are written as memory is");

enum class DatCard : std::int32_t {
  object_type = 100,
  real_size = 110,
  status_size = 120,
  scalar_dataset = 130,
  vector_dataset = 140,
  vector_type = 150,
  object_id = 160,
  node_count = 170,
  cell_count = 180,
  name = 190,
  output_time = 200,
  end = 210,
};

constexpr std::int32_t dat_version = 3000;
constexpr std::size_t dat_name_length = 40;
constexpr std::int64_t dat_card_size = 4;
constexpr std::int64_t dat_step_head_size = 5;  // flag and time, after the card
constexpr std::int64_t dat_header_size = 92;    // as written

}  // namespace quillet
