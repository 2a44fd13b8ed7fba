// A .dat file as the output of an operation.
#pragma once

#include <string>

#include "dat/dat_writer.h"
#include "results/result_sink.h"

namespace quillet {

class DatSink : public ResultSink {
 public:
  // Opens the output.
  DatSink(std::string file_name, const DatasetNames& names);

  const std::string& name() const override { return file_name; }
  void prepare(const ResultShape& shape, std::int64_t likely_time_count) override;
  void start_dataset(DatasetKind, const std::string&, const ResultShape&, std::int64_t) override {}
  void write_time_at(double hours, const RES_TYPE& record) override;
  void write_map(const ResultMap& map, const RES_TYPE& record) override;
  void close() override;

 private:
  void write_header(const ResultShape& shape);
  void write(float time, const RES_TYPE& record);

  std::string file_name;
  std::string dataset_name;
  DatWriter writer;
  ResultShape expected;
  bool has_header = false;
  bool header_says_vector = false;
  bool warned_of_negative_time = false;
  bool warned_of_maps = false;
};

}  // namespace quillet
