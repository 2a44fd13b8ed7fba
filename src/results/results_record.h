// One output time of one dataset in memory. Plain arrays, field by field, so that the loops over
// nodes run at memory speed.
#pragma once

#include <cstdint>

#include "results/result_shape.h"
#include "support/large_array.h"

namespace quillet {

// Per node, in node order.
struct ND_RES_TYPE {
  LargeArray<float> x;              // scalar value or x component, or pairs of components
  LargeArray<float> y;              // y component; sized for separated vectors only
  LargeArray<std::int32_t> source;  // number (from 1) of the input that supplied the value; 0
                                    // none. Sized only where sources are kept
};

// Per cell, in cell order.
struct CELL_RES_TYPE {
  LargeArray<std::int8_t> status;  // 1 = active (wet)
};

struct RES_TYPE {
  std::int32_t node_count = 0;
  std::int32_t cell_count = 0;
  bool is_vector = false;
  bool holds_pairs = false;  // vectors stand in nd.x as x1 y1 x2 y2 ..., as they do in files
  float time = 0;            // hours
  bool end_of_file = false;  // no output time follows in the file that was read
  ND_RES_TYPE nd;
  CELL_RES_TYPE cell;
};

inline ResultShape SHAPE_OF(const RES_TYPE& record) {
  return {record.node_count, record.cell_count, record.is_vector};
}

// Sizes a record for the given mesh: values 0.0, every cell's status `status`. Ends the run when
// memory does not suffice.
void SIZE_RECORD(RES_TYPE& record, std::int32_t node_count, std::int32_t cell_count, bool is_vector,
                 std::int8_t status = 0);

// The same for a record that holds vectors as pairs: for operations that pass them on or change
// them one by one, taking them apart and joining them again would only cost. Scalars stand in the
// first half.
void SIZE_RECORD_OF_PAIRS(RES_TYPE& record, std::int32_t node_count, std::int32_t cell_count,
                          bool is_vector);

// Sizes the cells alone: every status 1.
void SIZE_STATUSES(RES_TYPE& record, std::int32_t cell_count);

// Adds the sources to a sized record: 0 for every node.
void SIZE_SOURCES(RES_TYPE& record);

// Sizes an array, zeroed. Ends the run when memory does not suffice.
void SIZE_ARRAY(LargeArray<float>& array, std::int64_t count);
void SIZE_ARRAY(LargeArray<double>& array, std::int64_t count);
void SIZE_ARRAY(LargeArray<std::int8_t>& array, std::int64_t count);

// Values 0.0, every cell's status `status`; sizes and sources stay.
void RESET_RECORD(RES_TYPE& record, std::int8_t status);

}  // namespace quillet
