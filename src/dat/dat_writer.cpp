#include "dat/dat_writer.h"

#include <algorithm>

#include "dat/dat_layout.h"
#include "results/special_times.h"
#include "support/interleave.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::int32_t code(DatCard card) {
  return static_cast<std::int32_t>(card);
}

constexpr std::int64_t pair_size = 2 * sizeof(float);

// Vectors pass through a piece that fills the output's buffer, so it goes out without a copy.
constexpr std::int64_t pairs_per_piece = OutputUnit::buffer_size / pair_size;

// What a record says of itself in the header, besides its counts.
constexpr std::int32_t mesh_object = 3;
constexpr std::int32_t real_bytes = 4;
constexpr std::int32_t status_bytes = 1;

}  // namespace

std::string DAT_DATASET_NAME(std::string_view name) {
  name = TRIMF(name);
  if (name.size() <= dat_name_length) return std::string(name);
  return std::string(name.substr(name.size() - dat_name_length - 1, dat_name_length));
}

void DatWriter::expect_times(std::int64_t count, const ResultShape& shape) {
  const std::int64_t value_size = shape.is_vector ? pair_size : std::int64_t{sizeof(float)};
  const std::int64_t step_size = dat_card_size + dat_step_head_size + shape.cell_count.value_or(0) +
                                 shape.node_count * value_size;
  file.expect_size(dat_header_size + count * step_size + dat_card_size);
}

void DatWriter::write_header(std::string_view dataset_name, const ResultShape& shape) {
  std::string name = DAT_DATASET_NAME(dataset_name);
  name.resize(dat_name_length, ' ');
  put(dat_version);
  put(code(DatCard::object_type));
  put(mesh_object);
  put(code(DatCard::real_size));
  put(real_bytes);
  put(code(DatCard::status_size));
  put(status_bytes);
  put(code(shape.is_vector ? DatCard::vector_dataset : DatCard::scalar_dataset));
  put(code(DatCard::node_count));
  put(shape.node_count);
  put(code(DatCard::cell_count));
  put(shape.cell_count.value_or(0));
  put(code(DatCard::name));
  file.write(name);
}

void DatWriter::write_time(float time, const RES_TYPE& record) {
  constexpr std::int8_t statuses_present = 1;
  const float written_time = time < 0 ? maximum_marker_time : time;
  put(code(DatCard::output_time));
  file.write(&statuses_present, sizeof statuses_present);
  file.write(&written_time, sizeof written_time);
  file.write(record.cell.status.data(), static_cast<std::size_t>(record.cell_count));
  if (record.is_vector && !record.holds_pairs) {
    put_pairs(record.nd, record.node_count);
  } else {
    const std::int64_t count = record.node_count * std::int64_t{record.is_vector ? 2 : 1};
    file.write(record.nd.x.data(), static_cast<std::size_t>(count) * sizeof(float));
  }
}

void DatWriter::put_pairs(const ND_RES_TYPE& nodes, std::int32_t count) {
  pairs.resize(2 * pairs_per_piece);
  for (std::int64_t first = 0; first < count; first += pairs_per_piece) {
    const std::int64_t piece = std::min(pairs_per_piece, count - first);
    JOIN_COMPONENTS(nodes.x.data() + first, nodes.y.data() + first, piece, pairs.data());
    file.write(pairs.data(), static_cast<std::size_t>(piece * pair_size));
  }
}

void DatWriter::close() {
  put(code(DatCard::end));
  file.complete();
}

}  // namespace quillet
