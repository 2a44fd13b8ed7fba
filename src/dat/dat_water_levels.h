// Water levels from a .dat file of their own, beside the data file.
#pragma once

#include <optional>
#include <string>

#include "dat/dat_source.h"
#include "results/water_levels.h"

namespace quillet {

class DatWaterLevels : public WaterLevels {
 public:
  explicit DatWaterLevels(std::string levels_file) : file_name(std::move(levels_file)) {}

  // Opens the file. Counts other than the data's end the run.
  void open(const ResultShape& data) override;
  bool at_end() const override { return source->at_end(); }
  void read_next(const RES_TYPE& data) override;
  void read_at_time(float time, float tolerance, const RES_TYPE& data) override;
  const float* levels(const RES_TYPE&) const override { return step.nd.x.data(); }

 private:
  void warn_of_other_time(const RES_TYPE& data) const;

  std::string file_name;
  std::optional<DatSource> source;
  RES_TYPE step;
};

}  // namespace quillet
