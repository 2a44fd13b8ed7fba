// Writes the bytes of a .dat dataset. Prints nothing; a full disk ends the run.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "results/result_shape.h"
#include "results/results_record.h"
#include "support/output_unit.h"

namespace quillet {

// The 40 characters that a header holds of a dataset name, without trailing blanks. Of a longer
// name the characters before its last one: the last is lost (docs/compatibility.md).
std::string DAT_DATASET_NAME(std::string_view name);

class DatWriter {
 public:
  // Creates the file (see OutputUnit).
  explicit DatWriter(const std::string& file_name) : file(file_name) {}

  void expect_times(std::int64_t count, const ResultShape& shape);
  void write_header(std::string_view dataset_name, const ResultShape& shape);

  // A negative time is written as 111111: the format's readers take no negative times.
  void write_time(float time, const RES_TYPE& record);

  // Writes the end card, completes the file.
  void close();

 private:
  void put(std::int32_t value) { file.write(&value, sizeof value); }
  void put_pairs(const ND_RES_TYPE& nodes, std::int32_t count);

  OutputUnit file;
  std::vector<float> pairs;  // x y x y ..., a piece at a time
};

}  // namespace quillet
