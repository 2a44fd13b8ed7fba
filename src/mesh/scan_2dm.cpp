#include "mesh/scan_2dm.h"

#include <fmt/format.h>

#include <limits>
#include <string_view>

#include "mesh/list_values.h"
#include "mesh/mesh_cards.h"
#include "mesh/mesh_messages.h"
#include "support/console.h"
#include "support/line_reader.h"
#include "support/numbers.h"

namespace quillet {
namespace {

constexpr std::size_t line_width = 200;
constexpr std::size_t header_block_size = 4096;

// Lengths of the header line without trailing blanks, from which on it holds the older and the full
// geo-referencing values, and where they start.
constexpr std::size_t older_header_length = 10;
constexpr std::size_t full_header_length = 83;
constexpr std::size_t header_values_start = 10;

// False when a value cannot be read. Values that the line does not have any more stay as they were.
bool read_header_values(std::string_view line, MESH_SUMMARY_TYPE& mesh) {
  ListValues values(line.substr(header_values_start));
  for (double& value : mesh.geo_referencing) {
    if (!values.value(value)) return values.ended();
  }
  return mesh.pre_2005_format || values.value(mesh.z_offset) || values.ended();
}

void read_geo_referencing(std::string_view line, MESH_SUMMARY_TYPE& mesh) {
  SAY("Reading geo-referencing information...");
  mesh.pre_2005_format = line.size() < full_header_length;
  if (!read_header_values(line, mesh)) FAIL_ON_MESH_LINE(line);
  if (mesh.pre_2005_format) SAY("Detected pre 2005-09-AF .2dm format.");
}

void scan_header(const InputUnit& unit, MESH_SUMMARY_TYPE& mesh) {
  LineReader reader(unit, line_width, header_block_size);
  std::string_view line;
  reader.next(line);
  line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
  if (!line.starts_with("MESH2D")) {
    SAY("Did not find \"MESH2D\" in first 6 characters of first line");
    SAY("Found: " + SHOWN_LINE(line));
    EXITS();
  }
  mesh.fv_mesh = line.size() < older_header_length;
  if (mesh.fv_mesh) {
    SAY("No ORVANE geo-referencing information - assume ORVANE FV mesh...");
  } else {
    read_geo_referencing(line, mesh);
  }
}

// Cards by kind, none of their values read.
struct CardCounts {
  std::int64_t nodes = 0;
  std::int64_t triangles = 0;
  std::int64_t quads4 = 0;
  std::int64_t quads9 = 0;
};

CardCounts count_cards(const InputUnit& unit) {
  CardCounts counts;
  LineReader reader(unit, line_width);
  for (std::string_view line; reader.next(line);) {
    const MeshCard card = CARD_OF(line);
    counts.nodes += card == MeshCard::node;
    counts.triangles += card == MeshCard::triangle;
    counts.quads4 += card == MeshCard::quad4;
    counts.quads9 += card == MeshCard::quad9;
  }
  return counts;
}

std::int32_t table_size(const InputUnit& unit, std::int64_t count) {
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  if (count > most) {
    FAIL_READING(unit.name(),
                 fmt::format("expected at most {} cards of a kind, found {}", most, count));
  }
  return static_cast<std::int32_t>(count);
}

void store_counts(const InputUnit& unit, const CardCounts& found, MESH_SUMMARY_TYPE& mesh) {
  mesh.node_count = table_size(unit, found.nodes);
  mesh.element_count = table_size(unit, found.triangles + found.quads4 + found.quads9);
  mesh.triangle_count = static_cast<std::int32_t>(found.triangles);
  mesh.quad4_count = static_cast<std::int32_t>(found.quads4);
  mesh.quad9_count = static_cast<std::int32_t>(found.quads9);
}

void say_counts(const MESH_SUMMARY_TYPE& mesh) {
  SAY("Number of nodes: " + AINTEGER(mesh.node_count));
  SAY("Number of triangles: " + AINTEGER(mesh.triangle_count));
  SAY("Number of 4-node quads: " + AINTEGER(mesh.quad4_count));
  SAY("Number of 9-node quads: " + AINTEGER(mesh.quad9_count));
  SAY("Total number of elements: " + AINTEGER(mesh.element_count));
}

}  // namespace

void SCAN_2DM_HEADER(const InputUnit& unit, MESH_SUMMARY_TYPE& mesh) {
  scan_header(unit, mesh);
  SAY("...scanning .2dm file to determine size");
}

void SCAN_2DM(const InputUnit& unit, MESH_SUMMARY_TYPE& mesh) {
  store_counts(unit, count_cards(unit), mesh);
  FINISH_2DM_SCAN(mesh);
}

void FINISH_2DM_SCAN(MESH_SUMMARY_TYPE& mesh) {
  SAY("Finished Scanning .2dm file");
  say_counts(mesh);

  mesh.high_resolution = mesh.quad9_count > 0;
  if (!mesh.high_resolution) return;
  SAY("Detected High Resolution Output");
  if (mesh.quad4_count > 0) {
    SAY("WARNING - Both 4 and 9 node quadrilateral elements detected.  This may cause issues");
    PAUSE();
  }
}

}  // namespace quillet
