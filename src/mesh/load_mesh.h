#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "mesh/mesh.h"
#include "mesh/mesh_geometry.h"

namespace quillet {

// Opens a .2dm file (see InputUnit), scans it, compares its counts with those of the results where
// they are known, sizes the tables and reads it. All of that is one pass over the file when there
// is nothing wrong with it. Whatever `mesh` held is replaced.
//
// `expected_nodes` is not given for finite-volume results, which have a value per cell, and
// `expected_cells` not where the results do not tell. Ends the run when a count differs, and as the
// parts of the scan and READ_2DM do. With ValuesPer::node_or_fv_element a mesh of the finite-volume
// form may have the expected number of nodes in elements instead.
enum class ValuesPer { node, node_or_fv_element };
void LOAD_MESH(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
               std::optional<std::int32_t> expected_cells, MESH_TYPE& mesh,
               ValuesPer values = ValuesPer::node);
// The same, keeping less: what the operations use.
void LOAD_MESH(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
               std::optional<std::int32_t> expected_cells, MESH_GEOMETRY_TYPE& mesh,
               ValuesPer values = ValuesPer::node);

}  // namespace quillet
