// The arrays that a run works in, sized once when the run is set up.
#pragma once

#include <array>

#include "operations/extreme_kernel.h"
#include "results/result_shape.h"
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

// How the output time being read is held: not at all, with its vectors as they stand in files (for
// passing them on, or changing them where they stand), or with their components apart.
enum class StepForm { none, pairs, components };

// Of one value per node, or like the inputs (vectors as pairs) with the source of every value.
enum class ResultForm { none, scalar, pairs_with_sources };

// Which of the arrays an operation works in.
struct ArrayUse {
  StepForm step = StepForm::none;
  bool second_step = false;
  bool bed = false;
  bool previous = false;
  bool initial = false;
  bool hours = false;
  ResultForm result = ResultForm::none;
  bool file = false;
};

// Announces every array and sizes those in use. Ends the run when memory does not suffice.
void ALLOCATE_WORK_ARRAYS(const ArrayUse& use, const ResultShape& shape, WorkArrays& work);

}  // namespace quillet
