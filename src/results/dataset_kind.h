// What the output times of a dataset are.
#pragma once

namespace quillet {

enum class DatasetKind {
  series,         // output times of the simulation
  maximum,        // stored maxima
  minimum,        // stored minima
  special_times,  // times of maxima, durations: values are hours
  fixed,          // does not change with time
  other,          // in a folder that says nothing
};

}  // namespace quillet
