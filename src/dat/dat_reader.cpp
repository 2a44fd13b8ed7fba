#include "dat/dat_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "dat/shared_values.h"
#include "results/special_times.h"
#include "support/console.h"
#include "support/interleave.h"

namespace quillet {
namespace {

// A number of cells that no output time bears out by its statuses is believed up to this, or as far
// as the file has bytes.
constexpr std::int32_t most_cells_on_trust = 1'000'000;

constexpr std::int64_t value_size = sizeof(float);

// Reading apart from its neighbours costs about as much as reading so many bytes more.
constexpr std::int64_t cost_of_a_read = 16 * 1024;

// The stretches that hold the wanted items, those between near ones included; nothing where reading
// all items is cheaper.
std::optional<std::vector<DatStretch>> worthwhile_stretches(const std::vector<std::int32_t>& wanted,
                                                            std::int64_t count,
                                                            std::int64_t item_size) {
  std::vector<DatStretch> stretches;
  std::int64_t cost = 0;
  for (const std::int64_t item : wanted) {
    const bool is_near =
        !stretches.empty() &&
        (item - stretches.back().first - stretches.back().count) * item_size < cost_of_a_read;
    if (!is_near) {
      stretches.push_back({item, 0});
      cost += cost_of_a_read;
    }
    cost += (item + 1 - stretches.back().first - stretches.back().count) * item_size;
    stretches.back().count = item + 1 - stretches.back().first;
  }
  if (cost >= count * item_size) return std::nullopt;
  return stretches;
}

std::string cut_short(std::int64_t expected, const char* what, std::int64_t found) {
  return fmt::format("expected {} bytes of {}, found {}", expected, what,
                     std::max(found, std::int64_t{0}));
}

}  // namespace

DatReader::DatReader(const std::string& file_name)
    : file(file_name), shared_values(std::make_unique<SharedValues>()) {}

DatReader::~DatReader() = default;

void DatReader::read_header() {
  DatHeaderReader reader(file);
  file_header = reader.read();
  counts_stated = reader.node_count_stated();
  position = reader.position();
  statuses_in_force = 0;
  next_head.reset();
  more_follows = false;
  has_looked = true;
  step_follows = reader.step_follows() && position < file.size();
  holds_marker_maps = false;
  if (step_follows && file.size() - position >= dat_step_head_size) {
    holds_marker_maps = read_head().time == maximum_marker_time;
  }
}

void DatReader::check_counts() {
  const auto [nodes, cells, is_vector, name] = file_header;
  if (!counts_stated) {
    FAIL_READING(file.name(), "expected the header of a binary .dat file, found no node count");
  }
  if (nodes < 0 || cells < 0) {
    FAIL_READING(file.name(), fmt::format("expected numbers of nodes and cells of 0 or more, "
                                          "found {} nodes and {} cells",
                                          nodes, cells));
  }
  if (!step_follows) return;
  const Place start = place();
  const bool may_be_trusted = cells <= most_cells_on_trust || cells <= file.size();
  if (advance().statuses_at == 0 && !may_be_trusted && !states_statuses_later()) {
    FAIL_READING(file.name(), fmt::format("expected output times with the statuses of {} cells, "
                                          "found {} bytes",
                                          cells, file.size()));
  }
  return_to(start);
}

// Looks at the heads of the output times that follow.
bool DatReader::states_statuses_later() {
  while (!at_end()) {
    const auto step = try_advance();
    if (!step) return false;
    if (step->statuses_at != 0) return true;
  }
  return false;
}

std::int64_t DatReader::likely_time_count() const {
  look_for_step();
  const Extent extent = extent_of({.states_statuses = true, .time = 0});
  const std::int64_t block = dat_card_size + dat_step_head_size + extent.statuses + extent.values;
  return (file.size() - position) / block + 1;
}

float DatReader::next_time() {
  look_for_step();
  return read_head().time;
}

DatReader::StepHead DatReader::read_head() const {
  if (next_head) return *next_head;
  std::array<char, dat_step_head_size> bytes{};
  const auto found = file.read_at(position, bytes.data(), dat_step_head_size);
  if (found < dat_step_head_size) {
    FAIL_READING(file.name(), cut_short(dat_step_head_size, "status flag and time", found));
  }
  return head_from(bytes.data());
}

DatReader::StepHead DatReader::head_from(const char* bytes) {
  StepHead head;
  head.states_statuses = bytes[0] == 1;
  std::memcpy(&head.time, &bytes[1], sizeof head.time);
  return head;
}

bool DatReader::has_vectors_at(float time) const {
  return file_header.is_vector && !(holds_marker_maps && IS_MARKER_MAP(time));
}

DatReader::Extent DatReader::extent_of(const StepHead& head) const {
  const std::int64_t values_per_node = has_vectors_at(head.time) ? 2 : 1;
  return {.statuses = head.states_statuses ? file_header.cell_count : 0,
          .values = file_header.node_count * values_per_node * std::int64_t{sizeof(float)}};
}

std::optional<DatStep> DatReader::try_advance() {
  END_IF_INTERRUPTED();
  look_for_step();
  const StepHead head = read_head();
  const Extent extent = extent_of(head);
  const std::int64_t statuses_at = position + dat_step_head_size;
  const std::int64_t values_at = statuses_at + extent.statuses;
  if (values_at + extent.values > file.size()) return std::nullopt;

  if (head.states_statuses) statuses_in_force = statuses_at;
  position = values_at + extent.values;
  has_looked = false;
  return DatStep{head.time, has_vectors_at(head.time), statuses_in_force, values_at};
}

DatStep DatReader::advance() {
  const auto step = try_advance();
  if (!step) fail_cut_short(read_head());
  return *step;
}

void DatReader::fail_cut_short(const StepHead& head) const {
  const Extent extent = extent_of(head);
  const std::int64_t found = file.size() - position - dat_step_head_size;
  if (found < extent.statuses) {
    FAIL_READING(file.name(), cut_short(extent.statuses, "cell statuses", found));
  }
  FAIL_READING(file.name(), cut_short(extent.values, "node values", found - extent.statuses));
}

// Reads the card after an output time, when it is first asked for: the values of the output time
// stand before it, and the system reads ahead for those alone who read in order. The end of the
// file is an end like the end card, also right after a card that promises another output time. The
// head that follows is read with the card.
void DatReader::look_for_step() const {
  if (has_looked) return;
  has_looked = true;
  std::array<char, dat_card_size + dat_step_head_size> bytes{};
  const auto found = file.read_at(position, bytes.data(), bytes.size());
  const bool has_card = found >= dat_card_size;
  std::int32_t card = 0;
  std::memcpy(&card, bytes.data(), sizeof card);
  next_head.reset();
  if (found == bytes.size()) next_head = head_from(&bytes[dat_card_size]);
  position += dat_card_size;
  const bool is_step = card == static_cast<std::int32_t>(DatCard::output_time);
  const bool is_known = is_step || card == static_cast<std::int32_t>(DatCard::end);
  step_follows = has_card && is_step && position < file.size();
  more_follows = has_card && !step_follows && (!is_known || position < file.size());
}

void DatReader::return_to(const Place& place) {
  next_head.reset();
  has_looked = true;
  position = place.position;
  statuses_in_force = place.statuses_in_force;
  step_follows = place.step_follows;
}

void DatReader::limit_to(const std::vector<std::int32_t>& nodes,
                         const std::vector<std::int32_t>& cells) {
  needed_nodes = worthwhile_stretches(nodes, file_header.node_count, sizeof(float));
  needed_cells = worthwhile_stretches(cells, file_header.cell_count, 1);
}

void DatReader::load(const DatStep& step, RES_TYPE& record) {
  record.time = step.time;
  record.is_vector = step.is_vector;
  if (step.statuses_at == 0) {
    std::fill(record.cell.status.begin(), record.cell.status.end(), std::int8_t{1});
  } else {
    load_statuses(step.statuses_at, record);
  }
  load_values(step, record);
}

void DatReader::load_statuses(std::int64_t from, RES_TYPE& record) {
  const std::vector<DatStretch> all{{0, record.cell_count}};
  for (const DatStretch& stretch : needed_cells.value_or(all)) {
    read_bytes(from + stretch.first, record.cell.status.data() + stretch.first, stretch.count,
               "cell statuses");
  }
}

void DatReader::load_values(const DatStep& step, RES_TYPE& record) {
  const std::vector<DatStretch> all{{0, record.node_count}};
  const std::int64_t reals = step.is_vector ? 2 : 1;
  for (const DatStretch& stretch : needed_nodes.value_or(all)) {
    if (step.is_vector && !record.holds_pairs) {
      load_vectors(step.values_at, stretch, record.nd.x.data() + stretch.first,
                   record.nd.y.data() + stretch.first);
      continue;
    }
    const std::int64_t first = reals * stretch.first;
    read_bytes(step.values_at + first * value_size, record.nd.x.data() + first,
               reals * stretch.count * value_size, "node values");
  }
}

void DatReader::read_values(const DatStep& step, const DatStretch& nodes, float* values) {
  if (step.is_vector) {
    LargeArray<float> y(static_cast<std::size_t>(nodes.count));
    return load_vectors(step.values_at, nodes, values, y.data());
  }
  read_bytes(step.values_at + nodes.first * value_size, values, nodes.count * value_size,
             "node values");
}

void DatReader::load_vectors(std::int64_t from, const DatStretch& stretch, float* x, float* y) {
  constexpr std::int64_t pairs_per_piece = values_per_piece / 2;
  piece.resize(values_per_piece);
  for (std::int64_t done = 0; done < stretch.count; done += pairs_per_piece) {
    const std::int64_t size = std::min(pairs_per_piece, stretch.count - done);
    read_bytes(from + (stretch.first + done) * 2 * value_size, piece.data(), size * 2 * value_size,
               "node values");
    SEPARATE_COMPONENTS(piece.data(), size, x + done, y + done);
  }
}

void DatReader::load_in_pieces(const DatStep& step, std::int32_t cell_count, OutputPieces& pieces) {
  piece.resize(values_per_piece);
  load_statuses_in_pieces(step, cell_count, pieces);
  const int components = step.is_vector ? 2 : 1;
  const DatValues values{step.values_at, std::int64_t{components} * file_header.node_count,
                         components};
  shared_values->hand_on(file, values, pieces, [&](const DatStretch& stretch) {
    HAND_ON_STRETCH(values, stretch, piece, pieces,
                    [&](std::int64_t from, float* to, std::int64_t bytes) {
                      read_bytes(from, to, bytes, "node values");
                      return true;
                    });
  });
}

void DatReader::load_statuses_in_pieces(const DatStep& step, std::int32_t count,
                                        OutputPieces& pieces) {
  constexpr std::int64_t cells_per_piece = values_per_piece * value_size;
  auto* const statuses = reinterpret_cast<std::int8_t*>(piece.data());
  if (step.statuses_at == 0) std::fill_n(statuses, cells_per_piece, std::int8_t{1});
  for (std::int64_t first = 0; first < count; first += cells_per_piece) {
    const std::int64_t size = std::min(cells_per_piece, count - first);
    if (step.statuses_at != 0) {
      read_bytes(step.statuses_at + first, statuses, size, "cell statuses");
    }
    pieces.take_statuses(first, {statuses, static_cast<std::size_t>(size)});
  }
}

// The extent was checked when the walk passed; a file that became shorter since is noticed here.
void DatReader::read_bytes(std::int64_t from, void* destination, std::int64_t count,
                           const char* what) {
  const auto found = file.read_at(from, destination, count);
  if (found < count) FAIL_READING(file.name(), cut_short(count, what, found));
}

}  // namespace quillet
