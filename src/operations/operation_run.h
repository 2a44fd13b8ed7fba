// What an operation is given: the opened inputs, the opened output, and what the command line says.
#pragma once

#include <cstdint>
#include <optional>

#include "operations/work_arrays.h"
#include "results/result_sink.h"
#include "results/run_inputs.h"

namespace quillet {

struct OperationRun {
  RunInputs& inputs;
  ResultSink& output;
  WorkArrays& work;

  // Of the mesh that all inputs share.
  std::int32_t node_count = 0;
  std::int32_t cell_count = 0;  // unknown_count when no input tells
  bool is_vector = false;

  bool wet_dry_test = true;     // dry nodes are told from wet ones
  std::optional<float> time{};  // hours; only this output time
  float tolerance = 0;          // hours, when an output time is looked for
  bool ignore_stored = false;   // stored maxima and minima are not used
  float cutoff = 0;             // in the unit of the values
  float range_start = 0;        // hours
  float range_end = 0;
};

}  // namespace quillet
