// Water levels from a .dat file of their own, beside the data file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "dat/dat_reader.h"
#include "results/water_levels.h"

namespace quillet {

// The levels of the data's own time, wherever they stand in their file: levels of another time
// would tell wet from dry wrongly. Maxima have one time, whether an engine (99999) or this program
// (111111) made them; the times of maxima have the levels of the maxima.
class DatWaterLevels : public WaterLevels {
 public:
  explicit DatWaterLevels(std::string name_of_data) : data_file(std::move(name_of_data)) {}

  // Finds and opens the file (see LEVEL_FILES). Levels that are not those of the data end the run:
  // other counts, or none of the same maximum or minimum.
  void open(const ResultShape& data) override;
  void read_next(const RES_TYPE& data) override;
  void read_at_time(float time, float tolerance, const RES_TYPE& data) override;
  const float* levels(const RES_TYPE& data, std::int64_t first_node, std::int64_t count) override;

 private:
  std::string choose_file() const;
  std::optional<std::size_t> find(float meaning, float tolerance);
  bool is_at(std::size_t place, float meaning, float tolerance);
  bool walk_to(std::size_t place);
  void take(std::optional<std::size_t> place);

  std::string data_file;
  std::optional<DatReader> reader;
  std::vector<DatStep> steps;  // as far as the file was walked through
  std::size_t next = 0;        // after the output time last taken
  bool has_levels = false;     // of the output time of the data, the one last taken
  LargeArray<float> piece;     // levels are read when they are asked for
};

}  // namespace quillet
