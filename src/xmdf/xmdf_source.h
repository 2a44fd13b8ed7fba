// An XMDF file as the input of an operation: the dataset of the requested type.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "results/result_source.h"
#include "support/run_tally.h"
#include "xmdf/xmdf_dataset_reader.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

class XmdfSource : public ResultSource {
 public:
  // The header stays where it is for the whole run; its dataset is chosen before anything is asked
  // for.
  explicit XmdfSource(XmdfFileHeader& file_header) : header(file_header), reader(file_header) {}

  const std::string& name() const override { return header.file_name; }
  ResultShape shape() const override {
    return {header.node_count, header.cell_count, header.uses_vectors()};
  }
  std::int64_t likely_time_count() const override;

  // A chunk is read as a whole in any case.
  void limit_to(const std::vector<std::int32_t>&, const std::vector<std::int32_t>&) override {}

  bool has_walk() const override { return header.datasets().temporal != 0; }
  bool at_end() const override;
  double next_time() override { return header.times[outputs_passed]; }
  bool has_short_times() const override;
  void read_next(RES_TYPE& record) override;
  void pass_next() override {
    ++outputs_passed;
    NOTE_TIMES_PASSED();
  }

  void read_at_time(float time, float tolerance, RES_TYPE& record) override;

  bool has_stored(Extreme extreme) const override;
  void read_stored(Extreme extreme, RES_TYPE& record) override;
  void begin_scan(std::string_view sought) override;
  std::vector<float> times_ahead() override;
  float scan_next() override;
  void read_scanned(std::int32_t cell_count, OutputPieces& pieces) override;
  void end_scan() override;

  std::vector<std::unique_ptr<ResultDataset>> datasets() override;
  void close() override;

 private:
  // Nothing more of the time series is looked at.
  void pass_rest();

  XmdfFileHeader& header;
  XmdfDatasetReader reader;
  std::size_t outputs_passed = 0;  // of the time series
};

}  // namespace quillet
