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

  // Chooses the output time in all XMDF inputs at once; empty when there are none. `.dat` inputs
  // search when they are read.
  std::function<void(float time, float tolerance)> find_xmdf_time;

  void find_time(float time, float tolerance) const {
    if (find_xmdf_time) find_xmdf_time(time, tolerance);
  }
};

}  // namespace quillet
