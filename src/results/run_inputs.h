// The inputs of a run, in the order of the command line.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "results/input_type.h"
#include "results/result_source.h"

namespace quillet {

struct RunInputs {
  std::vector<std::unique_ptr<ResultSource>> sources;
  std::vector<InputType> types;  // one per source

  // Chooses the output time in all XMDF inputs at once; empty when there are none. `.dat` inputs
  // search when they are read.
  std::function<void(float time, float tolerance)> find_xmdf_time;

  void find_time(float time, float tolerance) const {
    if (find_xmdf_time) find_xmdf_time(time, tolerance);
  }
};

}  // namespace quillet
