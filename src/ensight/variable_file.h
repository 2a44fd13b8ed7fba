#pragma once

#include <cstdint>
#include <string>

#include "ensight/ensight_mesh.h"
#include "results/results_record.h"
#include "results/written_values.h"
#include "support/output_unit.h"

namespace quillet {

// Where the values of a variable file come from.
enum class ValuePlace {
  nodes,    // one per node, as the results have them
  cells,    // one per cell, as finite-volume results have them
  centres,  // one per cell, at its centre: 9-node meshes
};

// For results of `value_count` values. They stand in the cells of a finite-volume mesh when the run
// is a finite-volume run or there are as many values as elements, and in those of any other mesh
// when they are those of a finite-volume run and not as many as its nodes.
ValuePlace PLACE_OF_VALUES(const EnsightMesh& mesh, bool is_finite_volume,
                           std::int32_t value_count);

// Writes one output time of one dataset as text: the description, the part, and under "coordinates"
// or the name of every block of elements one value to a line; for vectors all x, all y and as many
// zeros for z under the same name.
//
// `record` has one value per node or, for ValuePlace::cells, per cell, and one status per cell. A
// cell is wet when its status is 1, a node when it is a corner of a wet cell. Dry values are
// written as 0.0. A centre's value is that of the centre node, else the mean of the corners. May
// throw std::bad_alloc.
void WRITE_VARIABLE_VALUES(const EnsightMesh& mesh, ValuePlace place, const RES_TYPE& record,
                           const std::string& description, OutputUnit& out);

// What is told of it in the end: the values as they stand in the file, but for their rounding.
WrittenValues VALUES_OF_VARIABLE(const EnsightMesh& mesh, ValuePlace place, const RES_TYPE& record);

// How many bytes that takes, but for a few lines.
std::int64_t VARIABLE_FILE_SIZE(const EnsightMesh& mesh, ValuePlace place, bool is_vector);

}  // namespace quillet
