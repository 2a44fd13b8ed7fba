#include "xmdf/xmdf_group_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <vector>

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

void read_values(XmdfFileHeader& header, const std::string& path, std::string_view what,
                 bool is_vector, std::int32_t output, RES_TYPE& record) {
  const XfStatus status = read_record_values(header.group, is_vector, output, record);
  if (status.ok()) return;
  FAIL_XMDF(fmt::format("ERROR - Reading {} [XF_READ_{}_VALUES_TIMESTEP] while reading ", what,
                        is_vector ? "VECTOR" : "SCALAR"),
            header.file_name, path, status);
}

// Every cell of a dataset without activity counts as wet, whatever other datasets of the file have.
XfStatus read_activity(const XfGroup& group, std::int32_t output,
                       LargeArray<std::int8_t>& statuses) {
  std::int32_t count = 0;
  XfStatus status = XF_GET_DATASET_NUMACTIVE(group, count);
  if (!status.ok()) return status;
  if (count > 0) return XF_READ_ACTIVITY_TIMESTEP(group, output, statuses);
  std::fill(statuses.begin(), statuses.end(), std::int8_t{1});
  return status;
}

}  // namespace

void OPEN_XMDF_GROUP(XmdfFileHeader& header, const std::string& path) {
  header.group_path = path;
  XfStatus status = XF_OPEN_GROUP(header.file, path, header.group);
  if (status.ok()) status = XF_GET_DATASET_TIMES(header.group, header.group_times);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Unable to open group [XF_OPEN_GROUP] ", header.file_name, path, status);
  }
}

void CLOSE_XMDF_GROUP(XmdfFileHeader& header) {
  const XfStatus status = XF_CLOSE_GROUP(header.group);
  if (!status.ok())
    FAIL_XMDF("ERROR - Closing group [XF_CLOSE_GROUP] ", header.file_name, "", status);
}

void READ_XMDF_OUTPUT(XmdfFileHeader& header, const std::string& path, std::string_view what,
                      bool is_vector, std::int32_t output, RES_TYPE& record) {
  read_values(header, path, what, is_vector, output, record);
  const XfStatus status = read_activity(header.group, output, record.cell.status);
  if (!status.ok()) {
    FAIL_XMDF("ERROR - Reading cell/wet dry flags [XF_READ_ACTIVITY_TIMESTEP] while reading ",
              header.file_name, path, status);
  }
  record.is_vector = is_vector;
  const auto index = static_cast<std::size_t>(output) - 1;
  if (index < header.group_times.size()) {
    record.time = static_cast<float>(header.group_times[index]);
  }
}

}  // namespace quillet
