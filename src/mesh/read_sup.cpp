#include "mesh/read_sup.h"

#include <new>
#include <string_view>

#include "mesh/mesh_messages.h"
#include "support/console.h"
#include "support/file_names.h"
#include "support/line_reader.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

constexpr std::size_t line_width = 1000;
constexpr std::size_t mesh_name_start = 6;
constexpr std::size_t data_name_start = 5;  // one character after the keyword is passed over

bool names_mesh(std::string_view line) {
  return UPPERCASE(line.substr(0, 6)) == "MESH2D";
}

bool names_data_file(std::string_view line) {
  return UPPERCASE(line.substr(0, 4)) == "DATA";
}

std::string name_from(std::string_view line, std::size_t start) {
  return start < line.size() ? REMOVEQUOTES(SHOWN_LINE(line.substr(start))) : std::string();
}

std::int32_t count_data_files(LineReader& reader) {
  std::int32_t count = 0;
  for (std::string_view line; reader.next(line);) count += names_data_file(line) ? 1 : 0;
  return count;
}

void take_line(std::string_view line, SUP_FILE_TYPE& sup) {
  if (names_mesh(line)) {
    sup.mesh_file = name_from(line, mesh_name_start);
    SAY("2DM File:  " + sup.mesh_file);
  } else if (names_data_file(line)) {
    sup.data_files.push_back(name_from(line, data_name_start));
    SAY("Data file: " + sup.data_files.back());
  }
}

}  // namespace

void READ_SUP(SUP_FILE_TYPE& sup) try {
  const InputUnit unit(sup.file);
  LineReader reader(unit, line_width);
  SAY("Scanning File: " + sup.file);
  sup.data_file_count = count_data_files(reader);
  SAY("Found: " + AINTEGER(sup.data_file_count) + " data file in .sup file.");
  SAY("Rewinding .sup file...");
  reader.go_to(0);
  SAY("   Done.");

  SAY("Allocate arrarys for .sup file data.");
  sup.data_files.clear();
  sup.data_files.reserve(static_cast<std::size_t>(sup.data_file_count));
  SAY("   Done.");

  SAY("Reading .sup file...");
  sup.folder = FILEFOLDERPATH(sup.file);
  for (std::string_view line; reader.next(line);) take_line(line, sup);
  SAY("   Done.");
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace quillet
