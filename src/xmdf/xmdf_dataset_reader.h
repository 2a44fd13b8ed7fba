// Reading the outputs of one dataset of an XMDF input, one after the other or single ones.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "results/output_pieces.h"
#include "results/results_record.h"
#include "xf/xf_dataset_reader.h"
#include "xmdf/xmdf_file_header.h"

namespace quillet {

// Whatever cannot be read ends the run with a line that names file and dataset. Open it once for a
// walk through the outputs; one dataset is open at a time.
class XmdfDatasetReader {
 public:
  // The header, whose file is open, outlives the reader.
  explicit XmdfDatasetReader(const XmdfFileHeader& file_header) : header(file_header) {}

  // Opens a dataset of the file's lists, with its times, in the place of the one that was open.
  void open(const std::string& dataset_path, bool holds_vectors);
  bool is_open() const { return group != nullptr; }
  void close();
  // Closes without a word, whether it can or not.
  void abandon() { group.reset(); }

  const XmdfFileHeader& file() const { return header; }
  // Of the dataset last opened.
  const std::string& path() const { return opened_path; }
  const std::vector<double>& times() const { return output_times; }  // hours

  // Values, activity and time of one output (from 1) into a record sized by the caller. Without
  // activity every cell counts as wet. `what` is what a failure of the values calls them ("data",
  // "maximums", "timestep").
  void read(std::int32_t output, std::string_view what, RES_TYPE& record);
  // The same without activity.
  void read_values(std::int32_t output, std::string_view what, RES_TYPE& record);
  // The same with activity, values first, without a record of its own: see OutputPieces.
  void read_in_pieces(std::int32_t output, std::string_view what, std::int32_t node_count,
                      std::int32_t cell_count, OutputPieces& pieces);

 private:
  [[noreturn]] void fail_on_values(std::string_view what, const XfStatus& status) const;
  void check_statuses(const XfStatus& status) const;
  XfStatus count_flags();
  XfStatus read_activity(std::int32_t output, LargeArray<std::int8_t>& statuses);
  XfStatus read_activity_in_pieces(std::int32_t output, std::int32_t cell_count,
                                   OutputPieces& pieces);

  const XmdfFileHeader& header;
  std::string opened_path;
  bool is_vector = false;
  XfGroup group;
  std::vector<double> output_times;
  std::optional<std::int32_t> flag_count;  // of the activity, once it was asked for
  LargeArray<std::int8_t> all_wet;         // where there is no activity and no record
};

}  // namespace quillet
