#include "mesh/load_mesh.h"

#include <sys/mman.h>

#include <cstddef>
#include <new>
#include <vector>

#include "mesh/mesh_messages.h"
#include "mesh/read_2dm.h"
#include "mesh/scan_2dm.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/input_unit.h"

namespace quillet {
namespace {

constexpr std::size_t large_page_size = std::size_t{2} << 20;

// The system hands out the pages of a large table one by one as they are first touched, which costs
// a fifth of the whole reading; large pages, where it has them, make that cheap. A hint.
void prefer_large_pages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) {
#ifdef MADV_HUGEPAGE
  constexpr std::uintptr_t page_size = 4096;
  const auto first = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t aligned = (first + page_size - 1) / page_size * page_size;
  if (size < large_page_size) return;
  ::madvise(reinterpret_cast<void*>(aligned), size - (aligned - first), MADV_HUGEPAGE);
#endif
}

template <typename Record>
void size_table(std::vector<Record>& table, std::int32_t count) {
  table.reserve(static_cast<std::size_t>(count));
  prefer_large_pages(table.data(), table.capacity() * sizeof(Record));
  table.resize(static_cast<std::size_t>(count));
}

void size_tables(MESH_TYPE& mesh) try {
  size_table(mesh.nodes, mesh.node_count);
  size_table(mesh.elements, mesh.element_count);
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace

void LOAD_MESH(const std::string& file_name, std::optional<std::int32_t> expected_nodes,
               std::optional<std::int32_t> expected_cells, MESH_TYPE& mesh) {
  const InputUnit unit(file_name);
  mesh = MESH_TYPE{};
  SCAN_2DM(unit, mesh);
  if (mesh.element_count != expected_cells.value_or(mesh.element_count)) {
    FAIL_ON_CELL_COUNT(*expected_cells);
  }
  if (mesh.node_count != expected_nodes.value_or(mesh.node_count)) {
    FAIL_ON_NODE_COUNT(*expected_nodes);
  }
  size_tables(mesh);
  READ_2DM(unit, mesh);
}

}  // namespace quillet
