// What an operation is given: the opened inputs, the opened output, and what the command line says.
#pragma once

#include <cstdint>
#include <optional>

#include "operations/work_arrays.h"
#include "results/result_sink.h"
#include "results/run_inputs.h"

namespace quillet {

struct OperationJob {
  RunInputs& inputs;
  ResultSink& output;
  WorkArrays& work;

  ResultShape shape{};  // of all inputs; with cells when any of them tells their number

  bool wet_dry_test = true;     // dry nodes are told from wet ones
  std::optional<float> time{};  // hours; only this output time
  float tolerance = 0;          // hours, when an output time is looked for
  bool ignore_stored = false;   // stored maxima and minima are not used
  float cutoff = 0;             // in the unit of the values
  float range_start = 0;        // hours
  float range_end = 0;
};

}  // namespace quillet
