// The inputs of a run, in the order of the command line.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "results/input_type.h"
#include "results/result_source.h"
#include "results/water_levels.h"

namespace quillet {

struct RunInputs {
  std::vector<std::unique_ptr<ResultSource>> sources;
  std::vector<InputType> types;                            // one per source
  std::vector<std::unique_ptr<WaterLevels>> water_levels;  // one per source; none without the
                                                           // wet/dry test

  // For inputs that choose an output time together, before any of them is read; may be empty.
  std::function<void(float time, float tolerance)> choose_output_time;

  void find_time(float time, float tolerance) const {
    if (choose_output_time) choose_output_time(time, tolerance);
  }
};

}  // namespace quillet
