// The arrays that a run works in, sized once when the run is set up.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "operations/operation.h"
#include "results/extreme_kernels.h"
#include "results/results_record.h"

namespace quillet {

struct WorkArrays {
  RES_TYPE step;                         // the output time being read
  RES_TYPE second_step;                  // that of the second input of a difference
  RES_TYPE result;                       // what is written, where that is not the step itself
  FileExtreme file;                      // the running maximum or minimum of one file
  std::array<LargeArray<float>, 2> bed;  // per run of a difference: bed elevations, metres
  LargeArray<float> previous;            // values at the output time before
  LargeArray<float> initial;             // values at the first output time
  LargeArray<double> hours;              // a duration or a time
};

// What the arrays are sized for.
struct WorkShape {
  Operation operation = Operation::max;
  std::int32_t node_count = 0;
  std::int32_t cell_count = 0;
  bool is_vector = false;
  bool wet_dry_test = true;
};

// Announces every array and sizes those that the operation uses. Ends the run when memory does not
// suffice.
void ALLOCATE_WORK_ARRAYS(const WorkShape& shape, WorkArrays& work);

}  // namespace quillet
