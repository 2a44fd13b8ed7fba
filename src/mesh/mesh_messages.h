#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillet {

// How a line of a file is shown: control characters, which would break up the console, as blanks,
// and without trailing blanks.
std::string SHOWN_LINE(std::string_view line);

// The messages of a line of a .2dm file that cannot be read, then EXITS.
[[noreturn]] void FAIL_ON_MESH_LINE(std::string_view line);

// The message of an id that two cards of a kind ("node", "element") carry, then EXITS: one of them
// would be lost and another id be left without values.
[[noreturn]] void FAIL_ON_REPEATED_ID(std::string_view file_name, std::string_view kind,
                                      std::int32_t id);

// What a .2dm file holds.
struct MESH_COUNTS_TYPE {
  std::string_view file_name;
  std::int32_t nodes = 0;
  std::int32_t cells = 0;
};

// The messages of a mesh that does not belong to the results, then EXITS.
[[noreturn]] void FAIL_ON_CELL_COUNT(const MESH_COUNTS_TYPE& found, std::int32_t expected);
[[noreturn]] void FAIL_ON_NODE_COUNT(const MESH_COUNTS_TYPE& found, std::int32_t expected);

// What helps after such a message: what was found in which file, and how to name another.
void HELP_WITH_OTHER_MESH(std::string_view found);

}  // namespace quillet
