#include "operations/difference_kernel.h"

#include <algorithm>

#include "support/kernel.h"
#include "support/vector_magnitude.h"

namespace quillet {
namespace {

// Metres of water that make a node wet.
constexpr float wet_depth = 0.001F;
constexpr float only_first_wet = 99.0F;
constexpr float only_second_wet = -99.0F;

// Levels that are read for a piece stay in the second cache until they are compared.
constexpr std::int64_t nodes_per_piece = 32 * 1024;

KERNEL_LOOP void subtract(std::int64_t count, const float* v1, const float* v2, float* result) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) result[i] = v1[i] - v2[i];
}

KERNEL_LOOP void subtract_where_wet(std::int64_t count, const float* v1, const float* v2,
                                    const float* level1, const float* level2, const float* bed1,
                                    const float* bed2, float* result) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    const bool wet1 = bed1[i] + wet_depth < level1[i];
    const bool wet2 = bed2[i] + wet_depth < level2[i];
    const float difference = v1[i] - v2[i];
    const float wet_in_first = wet2 ? difference : only_first_wet;
    const float dry_in_first = wet2 ? only_second_wet : 0.0F;
    result[i] = wet1 ? wet_in_first : dry_in_first;
  }
}

KERNEL_LOOP void active_in_both(std::int64_t count, const std::int8_t* a, const std::int8_t* b,
                                std::int8_t* result) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    result[i] = static_cast<std::int8_t>((a[i] == 1) & (b[i] == 1));
  }
}

KERNEL_LOOP void active_in_either(std::int64_t count, const std::int8_t* a, const std::int8_t* b,
                                  std::int8_t* result) {
#pragma omp simd
  for (std::int64_t i = 0; i < count; ++i) {
    result[i] = static_cast<std::int8_t>((a[i] == 1) | (b[i] == 1));
  }
}

void use_magnitudes(RES_TYPE& record) {
  VECTOR_MAGNITUDES(record.nd.x.data(), record.nd.y.data(), record.node_count, record.nd.x.data());
}

// What both forms begin with.
void begin(RES_TYPE& first, RES_TYPE& second, RES_TYPE& result) {
  if (first.is_vector) {
    use_magnitudes(first);
    use_magnitudes(second);
  }
  result.is_vector = false;
  result.time = first.time;
}

}  // namespace

void DIFFERENCE(RES_TYPE& first, RES_TYPE& second, RES_TYPE& result) {
  begin(first, second, result);
  Kernel<subtract>::run(result.node_count, first.nd.x.data(), second.nd.x.data(),
                        result.nd.x.data());
  Kernel<active_in_both>::run(result.cell_count, first.cell.status.data(),
                              second.cell.status.data(), result.cell.status.data());
}

void DIFFERENCE_WHERE_WET(RES_TYPE& first, RES_TYPE& second, const WetDryPieces& pieces,
                          RES_TYPE& result) {
  begin(first, second, result);
  for (std::int64_t node = 0; node < result.node_count; node += nodes_per_piece) {
    const std::int64_t count = std::min(nodes_per_piece, result.node_count - node);
    const WetDryArrays arrays = pieces(node, count);
    Kernel<subtract_where_wet>::run(count, first.nd.x.data() + node, second.nd.x.data() + node,
                                    arrays.level1, arrays.level2, arrays.bed1, arrays.bed2,
                                    result.nd.x.data() + node);
  }
  Kernel<active_in_either>::run(result.cell_count, first.cell.status.data(),
                                second.cell.status.data(), result.cell.status.data());
}

}  // namespace quillet
