#include "ensight/geometry_steps.h"

#include <fmt/format.h>

#include <algorithm>

#include "ensight/geometry.h"
#include "support/output_unit.h"
#include "support/text.h"

namespace quillet {
namespace {

// `bound` is what every coordinate lies within.
template <typename Value>
void determine(const ZeroedTable<Value>& values, Value bound, Value& minimum, Value& maximum) {
  Value least = bound;
  Value greatest = -bound;
  for (const Value value : values) {
    least = std::min(least, value);
    greatest = std::max(greatest, value);
  }
  minimum = least;
  maximum = greatest;
}

}  // namespace

void DETERMINE_EXTENTS(EnsightMesh& mesh) {
  SAY("Determining extents...");
  determine(mesh.x, 999999999.0, mesh.x_minimum, mesh.x_maximum);
  determine(mesh.y, 999999999.0, mesh.y_minimum, mesh.y_maximum);
  determine(mesh.z, 1.0e9F, mesh.z_minimum, mesh.z_maximum);
  SAY("Done.");
}

std::string GEOMETRY_LOG_NAME(const std::string& file_name) {
  return std::string(TRIMF(file_name)) + ".log";
}

void WRITE_SHIFT_LOG(const EnsightMesh& mesh, const std::string& geometry_name) {
  SAY("Opening Log File.");
  OutputUnit log(GEOMETRY_LOG_NAME(geometry_name), OutputUnit::Replace::directly);
  SAY("Outputting coordinate shift into log file.");
  log.write(
      fmt::format("Conversion Log File.\n"
                  "Shifted x coords by: {:15.5f}\n"
                  "Shifted y coords by: {:15.5f}\n"
                  "No Z shift applied.\n",
                  mesh.x_minimum, mesh.y_minimum));
  log.complete();
  SAY("Done.");
}

std::string_view RESOLUTION_TEXT(const EnsightMesh& mesh) {
  return mesh.high_resolution ? "High Resolution Output" : "Standard Resolution Output";
}

std::int64_t MESH_BODY_SIZE(const EnsightMesh& mesh, std::int64_t per_node,
                            std::int64_t per_element, std::int64_t per_element_node) {
  std::int64_t size = mesh.node_count * per_node;
  for (const ElementBlock& block : mesh.blocks) {
    size += block.count() * (per_element + block.shape->written_nodes * per_element_node);
  }
  return size;
}

}  // namespace quillet
