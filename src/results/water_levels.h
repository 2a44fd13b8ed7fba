// The water levels of one input, for telling wet nodes from dry ones.
#pragma once

#include <cstdint>

#include "results/results_record.h"

namespace quillet {

// Read after each output time of data: the levels of its time. Metres. Whatever cannot be read ends
// the run.
class WaterLevels {
 public:
  virtual ~WaterLevels() = default;

  // Prepares for reading levels over the mesh of the data.
  virtual void open(const ResultShape& data) = 0;

  // Reads the levels that go with the output time that `data` holds. There may be none for a time
  // that is not compared.
  virtual void read_next(const RES_TYPE& data) = 0;

  // Reads the levels of the output time that was asked for, to go with what `data` holds.
  virtual void read_at_time(float time, float tolerance, const RES_TYPE& data) = 0;

  // The levels of `count` nodes from `first_node` (from 0) on, which stay until the next call;
  // `data` is the record that the levels were read for. None ends the run.
  virtual const float* levels(const RES_TYPE& data, std::int64_t first_node,
                              std::int64_t count) = 0;
};

// For inputs that are water levels themselves.
class OwnWaterLevels : public WaterLevels {
 public:
  void open(const ResultShape&) override {}
  void read_next(const RES_TYPE&) override {}
  void read_at_time(float, float, const RES_TYPE&) override {}
  const float* levels(const RES_TYPE& data, std::int64_t first_node, std::int64_t) override {
    return data.nd.x.data() + first_node;
  }
};

}  // namespace quillet
