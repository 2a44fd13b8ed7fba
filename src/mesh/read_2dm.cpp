#include "mesh/read_2dm.h"

#include <algorithm>
#include <limits>
#include <new>

#include "mesh/mesh_messages.h"
#include "mesh/mesh_tables.h"
#include "mesh/read_cards.h"
#include "mesh/scan_2dm.h"
#include "support/console.h"

namespace quillet {
namespace {

// No card of a node or an element is shorter: "ND1 0 0 0" and its line end.
constexpr std::int64_t shortest_card = 10;

template <typename Store>
void say_reading(MeshTables<Store>& tables) {
  SAY("Rewinding .2dm file...");
  SAY("   Done.");
  SAY("...reading .2dm file");
  for (const std::string& line : tables.console()) SAY(line);
}

[[noreturn]] void fail_with(const MESH_FAILURE_TYPE& failure, const InputUnit& unit) {
  if (!failure.repeated.empty()) FAIL_ON_REPEATED_ID(unit.name(), failure.repeated, failure.id);
  FAIL_ON_MESH_LINE(failure.line);
}

template <typename Store>
void read_cards(const InputUnit& unit, MeshForm form, MeshTables<Store>& tables) {
  using Cards = typename Store::Cards;
  READ_CARDS(unit, Cards{{form}}, tables);
}

template <typename Store>
void finish(MeshTables<Store>& tables) {
  SAY("Finished Reading .2dm file");
  tables.finish();
}

template <typename Store>
void read_scanned(const InputUnit& unit, typename Store::Mesh& mesh) try {
  MeshTables<Store> tables(unit.size(), mesh.node_count, mesh.element_count, mesh);
  read_cards(unit, mesh.form(), tables);
  say_reading(tables);
  if (tables.failure()) fail_with(*tables.failure(), unit);
  finish(tables);
  tables.check_counts(unit.name());
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

template <typename Store>
bool read_at_once(const InputUnit& unit, const EXPECTED_COUNTS_TYPE& expected,
                  typename Store::Mesh& mesh) try {
  const auto most = static_cast<std::int32_t>(std::min<std::int64_t>(
      unit.size() / shortest_card, std::numeric_limits<std::int32_t>::max()));
  const std::int32_t most_nodes =
      expected.may_be_per_element ? most : expected.nodes.value_or(most);
  const std::int32_t most_cells = expected.cells.value_or(most);
  if (most_nodes > most || most_cells > most) return false;

  MeshTables<Store> tables(unit.size(), most_nodes, most_cells, mesh);
  read_cards(unit, mesh.form(), tables);
  if (tables.failure() || !tables.is_complete()) return false;
  tables.store_counts();
  if (!expected.has_cells_of(mesh) || !expected.has_nodes_of(mesh)) return false;

  FINISH_2DM_SCAN(mesh);
  say_reading(tables);
  finish(tables);
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

}  // namespace

void READ_2DM(const InputUnit& unit, MESH_TYPE& mesh) {
  read_scanned<RecordStore>(unit, mesh);
}

void READ_2DM(const InputUnit& unit, MESH_GEOMETRY_TYPE& mesh) {
  read_scanned<GeometryStore>(unit, mesh);
}

bool READ_2DM_AT_ONCE(const InputUnit& unit, const EXPECTED_COUNTS_TYPE& expected,
                      MESH_TYPE& mesh) {
  return read_at_once<RecordStore>(unit, expected, mesh);
}

bool READ_2DM_AT_ONCE(const InputUnit& unit, const EXPECTED_COUNTS_TYPE& expected,
                      MESH_GEOMETRY_TYPE& mesh) {
  return read_at_once<GeometryStore>(unit, expected, mesh);
}

}  // namespace quillet
