#include "mesh/mesh_messages.h"

#include <fmt/format.h>

#include <algorithm>

#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {

std::string SHOWN_LINE(std::string_view line) {
  std::string shown(line);
  const auto is_control = [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; };
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

void FAIL_ON_CELL_COUNT(std::int32_t expected) {
  SAY("ERROR - Number of cells does not match results file. Expecting number of cells: " +
      AINTEGER(expected));
  EXITS();
}

void FAIL_ON_NODE_COUNT(std::int32_t expected) {
  SAY("ERROR - Number of nodes does not match results file. Expecting number of nodes: " +
      AINTEGER(expected));
  EXITS();
}

}  // namespace quillet
