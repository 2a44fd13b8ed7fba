#include "operations/work_arrays.h"

#include <array>
#include <string>
#include <string_view>

#include "support/console.h"
#include "support/numbers.h"

namespace quillet {
namespace {

std::int32_t known_cells(const ResultShape& shape) {
  return shape.cell_count.value_or(0);
}

void size_step(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (use.step == StepForm::none) return;
  if (use.step == StepForm::pairs) {
    SIZE_RECORD_OF_PAIRS(work.step, shape.node_count, known_cells(shape), shape.is_vector);
  } else {
    SIZE_RECORD(work.step, shape.node_count, known_cells(shape), shape.is_vector);
  }
}

void size_second_step(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (!use.second_step) return;
  SIZE_RECORD(work.second_step, shape.node_count, known_cells(shape), shape.is_vector);
}

template <int run>
void size_bed(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (use.bed) SIZE_ARRAY(work.bed[run], shape.node_count);
}

void size_previous(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (use.previous) SIZE_ARRAY(work.previous, shape.node_count);
}

void size_initial(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (use.initial) SIZE_ARRAY(work.initial, shape.node_count);
}

void size_hours(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (use.hours) SIZE_ARRAY(work.hours, shape.node_count);
}

void size_result(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (use.result == ResultForm::none) return;
  const bool has_sources = use.result == ResultForm::pairs_with_sources;
  SIZE_RECORD_OF_PAIRS(work.result, shape.node_count, known_cells(shape),
                       shape.is_vector && has_sources);
  if (has_sources) SIZE_SOURCES(work.result);
}

void size_file(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  if (!use.file) return;
  SIZE_FILE_EXTREME(work.file, shape.node_count, known_cells(shape), shape.is_vector);
}

// Scripts follow the labels; those that stand for no array have none to size.
struct Allocation {
  std::string_view label;
  void (*size)(const ArrayUse&, const ResultShape&, WorkArrays&) = nullptr;
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

void ALLOCATE_WORK_ARRAYS(const ArrayUse& use, const ResultShape& shape, WorkArrays& work) {
  SAY_APART("Allocating RAM for a mesh of " + AINTEGER(shape.node_count) + " nodes and " +
            AINTEGER(known_cells(shape)) + " cells...");
  for (const Allocation& allocation : allocations) {
    SAY_APART("Allocation " + std::string(allocation.label));
    if (allocation.size != nullptr) allocation.size(use, shape, work);
    SAY("    Done.");
  }
}

}  // namespace quillet
