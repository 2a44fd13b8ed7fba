// An XMDF file as the output of an operation: one group, one folder in it, the datasets in that.
#pragma once

#include <cstdint>
#include <string>

#include "results/result_sink.h"
#include "support/part_file.h"
#include "xf/xf_writer.h"

namespace quillet {

class XmdfSink : public ResultSink {
 public:
  // Creates the file, under its temporary name. Ends the run when that fails.
  XmdfSink(std::string file_name, const DatasetNames& names);
  XmdfSink(const XmdfSink&) = delete;
  XmdfSink& operator=(const XmdfSink&) = delete;
  ~XmdfSink() override;

  const std::string& name() const override { return file_name; }
  void prepare(const ResultShape& shape, std::int64_t likely_time_count) override;
  void start_dataset(DatasetKind kind, const std::string& dataset, const ResultShape& shape,
                     std::int64_t time_count) override;
  void write_time_at(double hours, const RES_TYPE& record) override;
  void write_map(const ResultMap& map, const RES_TYPE& record) override;
  void close() override;

 private:
  void create_datasets(const std::string& dataset, const ResultShape& shape,
                       std::int64_t time_count);
  void create_folder();
  // Whether there was a dataset for it.
  bool write(double time, const RES_TYPE& record);
  XfRange prepare_vectors(const RES_TYPE& record);
  void write_scalars(double time, const float* values, const XfRange& range,
                     const RES_TYPE& record);
  void finish_output(const XfDatasetWriter& dataset, XfStatus status, const RES_TYPE& record,
                     const char* kind);
  void close_datasets();
  void check(const XfStatus& status, const std::string& message);

  std::string file_name;
  DatasetNames names;
  ResultShape expected;
  std::int64_t expected_times = 0;
  bool has_datasets = false;  // something was written to the file

  PartFile part;
  XfFile file;
  XfFolder folder;
  XfDatasetWriter scalar_dataset;
  XfDatasetWriter vector_dataset;
  // Of the vectors being written.
  LargeArray<float> pairs;  // x1 y1 x2 y2 ...; where the record does not hold them so
  LargeArray<float> magnitude;
};

// The name of the dataset of magnitudes beside a vector dataset: "Vector Velocity" has "Velocity",
// other names have "_mag" appended.
std::string XMDF_MAGNITUDE_NAME(const std::string& vector_name);

}  // namespace quillet
