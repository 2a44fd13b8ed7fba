#include "results/results_record.h"

#include <algorithm>
#include <new>

#include "support/console.h"

namespace quillet {
namespace {

template <typename Value>
void size_array(LargeArray<Value>& array, std::int64_t count) {
  try {
    LargeArray<Value>().swap(array);  // before there is memory for the new one
    array = LargeArray<Value>(static_cast<std::size_t>(count));
  } catch (const std::bad_alloc&) {
    FAIL_ALLOCATION();
  }
}

void size_statuses(LargeArray<std::int8_t>& statuses, std::int64_t count, std::int8_t status) {
  size_array(statuses, count);
  if (status != 0) std::fill(statuses.begin(), statuses.end(), status);
}

}  // namespace

void SIZE_RECORD(RES_TYPE& record, std::int32_t node_count, std::int32_t cell_count, bool is_vector,
                 std::int8_t status) {
  record.node_count = node_count;
  record.cell_count = cell_count;
  record.is_vector = is_vector;
  record.holds_pairs = false;
  size_array(record.nd.x, node_count);
  if (is_vector) size_array(record.nd.y, node_count);
  size_statuses(record.cell.status, cell_count, status);
}

void SIZE_RECORD_OF_PAIRS(RES_TYPE& record, std::int32_t node_count, std::int32_t cell_count,
                          bool is_vector) {
  SIZE_RECORD(record, node_count, cell_count, false);
  if (!is_vector) return;
  record.is_vector = true;
  record.holds_pairs = true;
  size_array(record.nd.x, std::int64_t{2} * node_count);
}

void SIZE_STATUSES(RES_TYPE& record, std::int32_t cell_count) {
  record.cell_count = cell_count;
  size_statuses(record.cell.status, cell_count, 1);
}

void SIZE_SOURCES(RES_TYPE& record) {
  size_array(record.nd.source, record.node_count);
}

void SIZE_ARRAY(LargeArray<float>& array, std::int64_t count) {
  size_array(array, count);
}

void SIZE_ARRAY(LargeArray<double>& array, std::int64_t count) {
  size_array(array, count);
}

void SIZE_ARRAY(LargeArray<std::int8_t>& array, std::int64_t count) {
  size_array(array, count);
}

void RESET_RECORD(RES_TYPE& record, std::int8_t status) {
  std::fill(record.nd.x.begin(), record.nd.x.end(), 0.0F);
  std::fill(record.nd.y.begin(), record.nd.y.end(), 0.0F);
  std::fill(record.cell.status.begin(), record.cell.status.end(), status);
}

}  // namespace quillet
