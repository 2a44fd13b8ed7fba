#include "ensight/variable_file.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "ensight/item_writer.h"
#include "support/large_array.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

constexpr std::int64_t values_per_piece = 1024;

template <std::size_t corners>
void mark_corners(const ElementBlock& block, const std::int8_t* status, std::uint8_t* wet) {
  const std::int32_t* node = block.nodes.data();
  const int nodes = block.shape->written_nodes;
  for (const std::int32_t id : block.ids) {
    if (status[id - 1] == 1) {
      for (std::size_t i = 0; i < corners; ++i) wet[node[i] - 1] = 1;
    }
    node += nodes;
  }
}

// 1 for every node that is a corner of at least one wet cell, else 0.
LargeArray<std::uint8_t> wet_nodes(const EnsightMesh& mesh, const RES_TYPE& record) {
  LargeArray<std::uint8_t> wet(static_cast<std::size_t>(mesh.node_count));
  for (const ElementBlock& block : mesh.blocks) {
    const auto mark = block.shape->mesh_nodes == 3 ? mark_corners<3> : mark_corners<4>;
    mark(block, record.cell.status.data(), wet.data());
  }
  return wet;
}

float mean_of_corners(const ElementBlock& block, std::size_t element,
                      std::span<const float> component) {
  const auto corners = static_cast<std::size_t>(block.shape->corners);
  double sum = 0;
  for (std::size_t i = 0; i < corners; ++i) {
    sum += component[static_cast<std::size_t>(block.nodes[element * corners + i]) - 1];
  }
  return static_cast<float>(sum / static_cast<double>(corners));
}

float centre_value(const ElementBlock& block, std::size_t element,
                   std::span<const float> component) {
  if (block.centres.empty()) return mean_of_corners(block, element, component);
  return component[static_cast<std::size_t>(block.centres[element]) - 1];
}

// Writes `count` values; take(first, values) fills in those from `first` on. Few enough are
// formatted at once to stay in the processor's first cache.
template <typename Take>
void write_values(OutputUnit& out, std::int32_t count, Take take) {
  out.write_items(count, e12_5_line_width, [&](std::int64_t first, std::int64_t end, char* at) {
    std::array<float, values_per_piece> values;
    while (first < end) {
      const std::int64_t at_once = std::min<std::int64_t>(values_per_piece, end - first);
      take(first, std::span(values.data(), static_cast<std::size_t>(at_once)));
      at = WRITE_E12_5_LINES(values.data(), at_once, at);
      first += at_once;
    }
  });
}

void write_node_values(OutputUnit& out, std::span<const float> component,
                       std::span<const std::uint8_t> wet) {
  const auto count = static_cast<std::int32_t>(wet.size());
  write_values(out, count, [&](std::int64_t first, std::span<float> piece) {
    const float* const value = component.data() + first;
    const std::uint8_t* const is_wet = wet.data() + first;
    for (std::size_t i = 0; i < piece.size(); ++i) piece[i] = is_wet[i] != 0 ? value[i] : 0.0F;
  });
}

template <typename ValueOf>
void write_cell_values(OutputUnit& out, const ElementBlock& block,
                       std::span<const std::int8_t> status, ValueOf value_of) {
  write_values(out, block.count(), [&](std::int64_t first, std::span<float> piece) {
    auto element = static_cast<std::size_t>(first);
    for (float& value : piece) {
      const auto cell = static_cast<std::size_t>(block.ids[element]) - 1;
      value = status[cell] == 1 ? value_of(element, cell) : 0.0F;
      ++element;
    }
  });
}

void write_zeros(OutputUnit& out, std::int32_t count) {
  const std::string line = E12_5_TEXT(0.0) + '\n';
  WRITE_ITEMS(out, count, e12_5_line_width, [text = line.data()](std::int64_t, char* at) {
    return std::copy_n(text, e12_5_line_width, at);
  });
}

// Under one name: the values of a scalar, or the x, y and z of a vector.
template <typename WriteComponent>
void write_block(OutputUnit& out, std::string_view name, std::int32_t count, const RES_TYPE& record,
                 WriteComponent write_component) {
  out.write(name);
  out.write("\n");
  write_component(record.nd.x);
  if (!record.is_vector) return;
  write_component(record.nd.y);
  write_zeros(out, count);
}

void write_cell_block(OutputUnit& out, const ElementBlock& block, ValuePlace place,
                      const RES_TYPE& record) {
  const std::span status = record.cell.status;
  const auto write_component = [&](std::span<const float> component) {
    if (place == ValuePlace::cells) {
      write_cell_values(out, block, status,
                        [&](std::size_t, std::size_t cell) { return component[cell]; });
    } else {
      write_cell_values(out, block, status, [&](std::size_t element, std::size_t) {
        return centre_value(block, element, component);
      });
    }
  };
  write_block(out, block.shape->name, block.count(), record, write_component);
}

void write_node_block(OutputUnit& out, const EnsightMesh& mesh, const RES_TYPE& record) {
  const LargeArray<std::uint8_t> wet = wet_nodes(mesh, record);
  write_block(out, "coordinates", mesh.node_count, record,
              [&](std::span<const float> component) { write_node_values(out, component, wet); });
}

// A scalar, or the magnitude of a vector; value_of(component) gives one component.
template <typename ValueOf>
float size_of(const RES_TYPE& record, ValueOf value_of) {
  if (!record.is_vector) return value_of(std::span<const float>(record.nd.x));
  return VECTOR_MAGNITUDE(value_of(record.nd.x), value_of(record.nd.y));
}

void note_node_values(const EnsightMesh& mesh, const RES_TYPE& record, WrittenValues& written) {
  const LargeArray<std::uint8_t> wet = wet_nodes(mesh, record);
  for (std::size_t node = 0; node < wet.size(); ++node) {
    const auto value_of = [&](std::span<const float> component) { return component[node]; };
    const float value = wet[node] != 0 ? size_of(record, value_of) : 0.0F;
    written.take_value(record.time, static_cast<std::int64_t>(node) + 1, value);
  }
}

void note_cell_values(const ElementBlock& block, ValuePlace place, const RES_TYPE& record,
                      WrittenValues& written) {
  for (std::size_t element = 0; element < block.ids.size(); ++element) {
    const auto cell = static_cast<std::size_t>(block.ids[element]) - 1;
    const auto value_of = [&](std::span<const float> component) {
      if (place == ValuePlace::cells) return component[cell];
      return centre_value(block, element, component);
    };
    const bool is_wet = record.cell.status[cell] == 1;
    const float value = is_wet ? size_of(record, value_of) : 0.0F;
    written.take_value(record.time, block.ids[element], value);
  }
}

}  // namespace

ValuePlace PLACE_OF_VALUES(const EnsightMesh& mesh, bool is_finite_volume,
                           std::int32_t value_count) {
  if (mesh.fv_mesh && (is_finite_volume || value_count == mesh.element_count)) {
    return ValuePlace::cells;
  }
  if (is_finite_volume && mesh.node_count != value_count) return ValuePlace::cells;
  return mesh.high_resolution && !mesh.fv_mesh ? ValuePlace::centres : ValuePlace::nodes;
}

void WRITE_VARIABLE_VALUES(const EnsightMesh& mesh, ValuePlace place, const RES_TYPE& record,
                           const std::string& description, OutputUnit& out) {
  out.write(description);
  out.write("\npart\n" + I10_TEXT(1) + '\n');
  if (place == ValuePlace::nodes) {
    write_node_block(out, mesh, record);
  } else {
    for (const ElementBlock& block : mesh.blocks) write_cell_block(out, block, place, record);
  }
}

std::int64_t VARIABLE_FILE_SIZE(const EnsightMesh& mesh, ValuePlace place, bool is_vector) {
  std::int64_t values = place == ValuePlace::nodes ? mesh.node_count : 0;
  if (place != ValuePlace::nodes) {
    for (const ElementBlock& block : mesh.blocks) values += block.count();
  }
  return values * (is_vector ? 3 : 1) * e12_5_line_width;
}

WrittenValues VALUES_OF_VARIABLE(const EnsightMesh& mesh, ValuePlace place,
                                 const RES_TYPE& record) {
  WrittenValues written;
  written.take_statuses(record);
  written.are_of_cells = place != ValuePlace::nodes;
  if (written.are_of_cells) {
    for (const ElementBlock& block : mesh.blocks) note_cell_values(block, place, record, written);
  } else {
    note_node_values(mesh, record, written);
  }
  return written;
}

}  // namespace quillet
