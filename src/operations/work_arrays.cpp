#include "operations/work_arrays.h"

#include <array>
#include <string>
#include <string_view>

#include "support/console.h"
#include "support/numbers.h"

namespace quillet {
namespace {

bool is_extreme(Operation operation) {
  return operation == Operation::max || operation == Operation::min;
}

// These look at output times, or at every file by itself.
bool works_without_step(Operation operation) {
  return operation == Operation::times || operation == Operation::conv ||
         operation == Operation::ensight;
}

// These pass vectors on as they stand in files, or change them where they stand.
bool keeps_vectors_paired(Operation operation) {
  return operation == Operation::keep || operation == Operation::remove ||
         operation == Operation::range || operation == Operation::con ||
         operation == Operation::trim;
}

void size_step(const WorkShape& shape, WorkArrays& work) {
  if (works_without_step(shape.operation)) return;
  const auto [operation, nodes, cells, is_vector, wet_dry_test] = shape;
  if (keeps_vectors_paired(operation)) {
    SIZE_RECORD_OF_PAIRS(work.step, nodes, cells, is_vector);
  } else {
    SIZE_RECORD(work.step, nodes, cells, is_vector);
  }
}

void size_second_step(const WorkShape& shape, WorkArrays& work) {
  if (shape.operation != Operation::dif) return;
  SIZE_RECORD(work.second_step, shape.node_count, shape.cell_count, shape.is_vector);
}

template <int run>
void size_bed(const WorkShape& shape, WorkArrays& work) {
  if (shape.operation != Operation::dif || !shape.wet_dry_test) return;
  SIZE_ARRAY(work.bed[run], shape.node_count);
}

bool is_duration(Operation operation) {
  return operation == Operation::dur || operation == Operation::toi;
}

void size_previous(const WorkShape& shape, WorkArrays& work) {
  if (is_duration(shape.operation)) SIZE_ARRAY(work.previous, shape.node_count);
}

void size_initial(const WorkShape& shape, WorkArrays& work) {
  if (shape.operation == Operation::toi) SIZE_ARRAY(work.initial, shape.node_count);
}

void size_hours(const WorkShape& shape, WorkArrays& work) {
  if (is_duration(shape.operation)) SIZE_ARRAY(work.hours, shape.node_count);
}

void size_result(const WorkShape& shape, WorkArrays& work) {
  if (is_extreme(shape.operation)) {
    SIZE_RECORD(work.result, shape.node_count, shape.cell_count, shape.is_vector);
    SIZE_SOURCES(work.result);
  } else if (shape.operation == Operation::dif || is_duration(shape.operation)) {
    SIZE_RECORD(work.result, shape.node_count, shape.cell_count, false);
  }
}

void size_file(const WorkShape& shape, WorkArrays& work) {
  if (!is_extreme(shape.operation)) return;
  SIZE_FILE_EXTREME(work.file, shape.node_count, shape.cell_count, shape.is_vector);
}

struct Allocation {
  std::string_view label;
  void (*size)(const WorkShape&, WorkArrays&) = nullptr;  // none: a label of old
};

constexpr std::array<Allocation, 20> allocations{{
    {"nd1", size_step},
    {"nd2", size_second_step},
    {"nd3"},
    {"nd4"},
    {"sf"},
    {"sfo"},
    {"ff"},
    {"v1", size_previous},
    {"v2", size_initial},
    {"o1", size_hours},
    {"o2"},
    {"h1"},
    {"h2"},
    {"z1", size_bed<0>},
    {"z2", size_bed<1>},
    {"nceok"},
    {"res_%", size_result},
    {"wk_res_%", size_file},
    {"geom_%"},
    {"geom2_%"},
}};

}  // namespace

void ALLOCATE_WORK_ARRAYS(const WorkShape& shape, WorkArrays& work) {
  SAY_APART("Allocating RAM for a mesh of " + AINTEGER(shape.node_count) + " nodes and " +
            AINTEGER(shape.cell_count) + " cells...");
  for (const Allocation& allocation : allocations) {
    SAY_APART("Allocation " + std::string(allocation.label));
    if (allocation.size != nullptr) allocation.size(shape, work);
    SAY("    Done.");
  }
}

}  // namespace quillet
