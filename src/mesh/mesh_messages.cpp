#include "mesh/mesh_messages.h"

#include <fmt/format.h>

#include <algorithm>

#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

[[noreturn]] void fail_with_counts(const MESH_COUNTS_TYPE& found) {
  HELP_WITH_OTHER_MESH(fmt::format("Found in {}: nodes {}, cells {}.", QUOTED(found.file_name),
                                   found.nodes, found.cells));
  EXITS();
}

}  // namespace

std::string SHOWN_LINE(std::string_view line) {
  std::string shown(line);
  const auto is_control = [](unsigned char c) { return c < ' ' || c == 0x7F; };
  std::replace_if(shown.begin(), shown.end(), is_control, ' ');
  shown.resize(TRIMF(shown).size());
  return shown;
}

void FAIL_ON_MESH_LINE(std::string_view line) {
  SAY("ERROR - Reading .2dm file from following line in .2dm file");
  SAY(SHOWN_LINE(line));
  EXITS();
}

void FAIL_ON_REPEATED_ID(std::string_view file_name, std::string_view kind, std::int32_t id) {
  FAIL_READING(file_name,
               fmt::format("expected every {} id once, found {} {} again", kind, kind, id));
}

void HELP_WITH_OTHER_MESH(std::string_view found) {
  SAY_HELP(found);
  SAY_HELP("-2dm names the mesh of the results; one that a .sup file names goes before it.");
}

void FAIL_ON_CELL_COUNT(const MESH_COUNTS_TYPE& found, std::int32_t expected) {
  SAY("ERROR - Number of cells does not match results file. Expecting number of cells: " +
      AINTEGER(expected));
  fail_with_counts(found);
}

void FAIL_ON_NODE_COUNT(const MESH_COUNTS_TYPE& found, std::int32_t expected) {
  SAY("ERROR - Number of nodes does not match results file. Expecting number of nodes: " +
      AINTEGER(expected));
  fail_with_counts(found);
}

}  // namespace quillet
