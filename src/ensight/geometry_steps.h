// What both forms of the geometry file have in common.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ensight/ensight_mesh.h"
#include "support/console.h"

namespace quillet {

// Extents over all nodes, with console lines. Without nodes the minima lie above the maxima.
void DETERMINE_EXTENTS(EnsightMesh& mesh);

// Four lines that tell the shift, with console lines.
void WRITE_SHIFT_LOG(const EnsightMesh& mesh, const std::string& geometry_name);

// Second description line of a mesh that is no finite-volume mesh; of any in the binary form.
std::string_view RESOLUTION_TEXT(const EnsightMesh& mesh);

// Bytes of all coordinates and elements when every number of a node together takes `per_node`, an
// element `per_element` and each of its nodes `per_element_node`.
std::int64_t MESH_BODY_SIZE(const EnsightMesh& mesh, std::int64_t per_node,
                            std::int64_t per_element, std::int64_t per_element_node);

// Coordinates and blocks in turn, with the console lines around each.
template <typename Geometry>
void WRITE_MESH_BODY(const EnsightMesh& mesh, Geometry& geometry) {
  SAY("Writing coordinates...");
  geometry.write_coordinates();
  SAY("Done.");
  for (const ElementBlock& block : mesh.blocks) {
    SAY(block.shape->begin_report);
    geometry.write_block(block);
    SAY(block.shape->end_report);
  }
}

}  // namespace quillet
