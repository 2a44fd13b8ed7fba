// Folding one set of values into another: the running maximum or minimum of one file, and of all
// files. Strictly greater (smaller) wins, so ties keep what came first; a value that is not a
// number never wins. Running values start at 0, for the minimum too. Vectors are compared by
// magnitude and keep their components, as pairs x1 y1 x2 y2 ....
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "results/extreme.h"
#include "results/results_record.h"

namespace quillet {

// The running maximum or minimum over the output times of one file.
struct FileExtreme {
  RES_TYPE record;              // vectors as pairs
  LargeArray<float> magnitude;  // of the record's vectors; empty for scalars
  LargeArray<float> time;       // per node: hours at which the value was set
};

// Sizes everything for the given mesh. Ends the run when memory does not suffice.
void SIZE_FILE_EXTREME(FileExtreme& file, std::int32_t node_count, std::int32_t cell_count,
                       bool is_vector);

// Status that every cell has before anything was folded in: a cell is active in a maximum when it
// is active at any output time, in a minimum when it is at every one.
std::int8_t INITIAL_STATUS(Extreme extreme);

// Values, times and statuses as before the first output time.
void RESET_FILE_EXTREME(Extreme extreme, FileExtreme& file);

// Folds some values of an output time into its file's extreme: those of the nodes from `first_node`
// (from 0) on, one per node or, for a record of vectors, a pair.
void FOLD_VALUES(Extreme extreme, float time, std::int64_t first_node,
                 std::span<const float> values, FileExtreme& file);

// Folds statuses, as many as `running` holds: the larger (smaller) of the absolute values.
void FOLD_STATUSES(Extreme extreme, std::span<const std::int8_t> status,
                   std::span<std::int8_t> running);

// file.record was replaced by stored extremes: sets the magnitudes to match, every time to `time`.
void ADOPT_STORED_EXTREME(float time, FileExtreme& file);

// Folds one file into the record over all files, which has vectors as pairs too; nodes that it wins
// get its number as source. With `node_counts` (one byte per node, or null for all) only nodes with
// a 1 take part; scalars only. File 1 comes first, finds that record new and may leave its values
// to it.
void FOLD_FILE(Extreme extreme, FileExtreme& file, std::int32_t file_number,
               const std::vector<std::uint8_t>* node_counts, RES_TYPE& overall);

}  // namespace quillet
