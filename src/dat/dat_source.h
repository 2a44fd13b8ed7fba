// A .dat file as the input of an operation.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dat/dat_reader.h"
#include "results/result_source.h"
#include "support/run_tally.h"

namespace quillet {

// Reads and prints the header, checks its counts. Ends the run when they cannot be true.
void READ_DAT_HEADER(DatReader& reader);

// Warns when the file that was walked through goes on behind its last output time.
void WARN_OF_UNREAD_DATA(const DatReader& reader);

class DatSource : public ResultSource {
 public:
  // Opens the file. Nothing else is known before `read_header`.
  explicit DatSource(const std::string& file_name) : reader(file_name) {}

  void read_header() { READ_DAT_HEADER(reader); }

  const std::string& name() const override { return reader.name(); }
  ResultShape shape() const override;
  std::int64_t likely_time_count() const override { return reader.likely_time_count(); }

  void limit_to(const std::vector<std::int32_t>& nodes,
                const std::vector<std::int32_t>& cells) override {
    reader.limit_to(nodes, cells);
  }

  FileStretch stretch_ahead() const override { return reader.rest(); }

  bool at_end() const override { return reader.at_end(); }
  double next_time() override { return reader.next_time(); }
  bool has_short_times() const override { return true; }
  void read_next(RES_TYPE& record) override;
  void pass_next() override;

  // The first output time within the tolerance (strictly), from the start of the file.
  void read_at_time(float time, float tolerance, RES_TYPE& record) override;

  bool stored_extremes_end_walk() const override { return true; }
  void begin_scan(std::string_view sought) override;
  std::vector<float> times_ahead() override;
  float scan_next() override;
  void read_scanned(std::int32_t cell_count, OutputPieces& pieces) override;
  void end_scan() override;

  std::vector<std::unique_ptr<ResultDataset>> datasets() override;
  void close() override;

 private:
  DatStep read_time_step();

  DatReader reader;
  DatStep scanned;  // the output time that a scan has moved to
};

}  // namespace quillet
