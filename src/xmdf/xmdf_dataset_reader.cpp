#include "xmdf/xmdf_dataset_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>

namespace quillet {
namespace {

XfStatus read_record_values(const XfGroup& group, bool is_vector, std::int32_t output,
                            RES_TYPE& record) {
  const auto count = static_cast<std::size_t>(record.node_count);
  ND_RES_TYPE& nodes = record.nd;
  if (!is_vector) {
    return XF_READ_SCALAR_VALUES_TIMESTEP(group, output, std::span(nodes.x).first(count));
  }
  if (record.holds_pairs) return XF_READ_VECTOR_VALUES_TIMESTEP(group, output, nodes.x);
  return XF_READ_VECTOR_VALUES_TIMESTEP(group, output, nodes.x, nodes.y);
}

}  // namespace

void XmdfDatasetReader::open(const std::string& dataset_path, bool holds_vectors) {
  opened_path = dataset_path;
  is_vector = holds_vectors;
  flag_count.reset();
  XfStatus status = XF_OPEN_GROUP(header.file, opened_path, group);
  if (status.ok()) status = XF_GET_DATASET_TIMES(group, output_times);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Unable to open group [XF_OPEN_GROUP]", header.file_name, opened_path,
              status);
  }
}

void XmdfDatasetReader::close() {
  const XfStatus status = XF_CLOSE_GROUP(group);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Closing group [XF_CLOSE_GROUP]", header.file_name, "", status);
  }
}

void XmdfDatasetReader::fail_on_values(std::string_view what, const XfStatus& status) const {
  FAIL_XMDF(fmt::format("ERROR - Reading {} [XF_READ_{}_VALUES_TIMESTEP] while reading ", what,
                        is_vector ? "VECTOR" : "SCALAR"),
            header.file_name, opened_path, status);
}

void XmdfDatasetReader::read_values(std::int32_t output, std::string_view what, RES_TYPE& record) {
  const XfStatus status = read_record_values(group, is_vector, output, record);
  if (!status.ok()) fail_on_values(what, status);
  record.is_vector = is_vector;
  record.time = static_cast<float>(output_times[static_cast<std::size_t>(output) - 1]);
}

void XmdfDatasetReader::read_in_pieces(std::int32_t output, std::string_view what,
                                       std::int32_t node_count, std::int32_t cell_count,
                                       OutputPieces& pieces) {
  const auto read = is_vector ? XF_READ_VECTOR_VALUES_IN_PIECES : XF_READ_SCALAR_VALUES_IN_PIECES;
  const XfStatus status = read(group, output, static_cast<std::size_t>(node_count),
                               [&](std::size_t first, std::span<const float> values) {
                                 pieces.take_values(static_cast<std::int64_t>(first), values);
                               });
  if (!status.ok()) fail_on_values(what, status);
  check_statuses(read_activity_in_pieces(output, cell_count, pieces));
}

// Every cell of a dataset without activity counts as wet, whatever other datasets of the file have.
XfStatus XmdfDatasetReader::count_flags() {
  return flag_count ? XfStatus{} : XF_GET_DATASET_NUMACTIVE(group, flag_count.emplace());
}

XfStatus XmdfDatasetReader::read_activity(std::int32_t output, LargeArray<std::int8_t>& statuses) {
  XfStatus status = count_flags();
  if (!status.ok()) return status;
  if (*flag_count > 0) return XF_READ_ACTIVITY_TIMESTEP(group, output, statuses);
  std::fill(statuses.begin(), statuses.end(), std::int8_t{1});
  return {};
}

XfStatus XmdfDatasetReader::read_activity_in_pieces(std::int32_t output, std::int32_t cell_count,
                                                    OutputPieces& pieces) {
  XfStatus status = count_flags();
  if (!status.ok()) return status;
  if (*flag_count > 0) {
    return XF_READ_ACTIVITY_IN_PIECES(group, output, static_cast<std::size_t>(cell_count),
                                      [&](std::size_t first, std::span<const std::int8_t> flags) {
                                        pieces.take_statuses(static_cast<std::int64_t>(first),
                                                             flags);
                                      });
  }
  if (std::ssize(all_wet) != cell_count) SIZE_ARRAY(all_wet, cell_count);
  std::fill(all_wet.begin(), all_wet.end(), std::int8_t{1});
  pieces.take_statuses(0, all_wet);
  return {};
}

void XmdfDatasetReader::check_statuses(const XfStatus& status) const {
  if (status.ok()) return;
  FAIL_XMDF("ERROR - Reading cell/wet dry flags [XF_READ_ACTIVITY_TIMESTEP] while reading ",
            header.file_name, opened_path, status);
}

void XmdfDatasetReader::read(std::int32_t output, std::string_view what, RES_TYPE& record) {
  read_values(output, what, record);
  check_statuses(read_activity(output, record.cell.status));
}

}  // namespace quillet
