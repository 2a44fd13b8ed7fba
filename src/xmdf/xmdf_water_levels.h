// Water levels that stand in the same XMDF file as the data.
#pragma once

#include <cstdint>

#include "results/water_levels.h"
#include "xmdf/xmdf_dataset_reader.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

class XmdfWaterLevels : public WaterLevels {
 public:
  XmdfWaterLevels(const XmdfFileHeader& file_header, float search_tolerance)
      : header(file_header), tolerance(search_tolerance), reader(file_header) {}

  // Finds the datasets of water levels. A file without any ends the run.
  void open(const ResultShape& data) override;
  void read_next(const RES_TYPE& data) override { read_at_time(data.time, tolerance, data); }
  void read_at_time(float time, float tolerance, const RES_TYPE&) override;
  const float* levels(const RES_TYPE&, std::int64_t first_node, std::int64_t) override {
    return step.nd.x.data() + first_node;
  }

 private:
  void FindWaterLevel();
  void ReadWaterLevel(float requestTime, float timeTolerance);
  void open_dataset(std::int32_t position);
  void read_output(std::int32_t output);

  const XmdfFileHeader& header;
  float tolerance;
  // Positions in the header's list of scalar datasets, kept apart from those of the data's type.
  std::int32_t maximums = 0;
  std::int32_t temporal = 0;
  XmdfDatasetReader reader;
  RES_TYPE step;
};

}  // namespace quillet
