#include "ensight/geometry_form.h"

#include <fmt/format.h>

#include "ensight/geometry.h"
#include "support/console.h"
#include "support/text.h"

namespace quillet {
namespace {

void say_extents() {
  SAY("Determining extents...");
  SAY("Done.");
}

// Four lines that tell the shift.
void write_shift_log(const EnsightMesh& mesh, const std::string& geometry_name) {
  SAY("Opening Log File.");
  OutputUnit log(GEOMETRY_LOG_NAME(geometry_name), OutputUnit::Replace::directly);
  SAY("Outputting coordinate shift into log file.");
  log.write(
      fmt::format("Conversion Log File.\n"
                  "Shifted x coords by: {:15.5f}\n"
                  "Shifted y coords by: {:15.5f}\n"
                  "No Z shift applied.\n",
                  mesh.x_minimum, mesh.y_minimum));
  log.complete();
  SAY("Done.");
}

}  // namespace

void GeometryForm::begin() {
  out.expect_size(expected_size());
  write_head();
}

void GeometryForm::write_part(std::size_t number) {
  if (number == 0) {
    write_coordinates();
  } else {
    write_block(mesh.blocks[number - 1]);
  }
}

void GeometryForm::write_all() {
  begin();
  for (std::size_t number = 0; number <= mesh.blocks.size(); ++number) {
    write_part(number);
    if (out.has_failed()) return;
    parts_written = number + 1;
  }
}

// What a helper could not write is told where it would have been met here.
void GeometryForm::complete_part(std::size_t number, FileAhead& file) {
  if (!file.is_ahead()) {
    write_part(number);
  } else if (number >= parts_written) {
    file.complete();
  }
}

void GeometryForm::tell(FileAhead& file) {
  say_extents();
  write_shift_log(mesh, out.name());
  file.take_turn();
  if (!file.is_ahead()) begin();
  SAY("Writing coordinates...");
  complete_part(0, file);
  SAY("Done.");
  for (std::size_t i = 0; i < mesh.blocks.size(); ++i) {
    SAY(mesh.blocks[i].shape->begin_report);
    complete_part(i + 1, file);
    SAY(mesh.blocks[i].shape->end_report);
  }
  file.complete();
}

std::string GEOMETRY_LOG_NAME(const std::string& file_name) {
  return std::string(TRIMF(file_name)) + ".log";
}

std::string_view RESOLUTION_TEXT(const EnsightMesh& mesh) {
  return mesh.high_resolution ? "High Resolution Output" : "Standard Resolution Output";
}

std::int64_t MESH_BODY_SIZE(const EnsightMesh& mesh, std::int64_t per_node,
                            std::int64_t per_element, std::int64_t per_element_node) {
  std::int64_t size = mesh.node_count * per_node;
  for (const ElementBlock& block : mesh.blocks) {
    size += block.count() * (per_element + block.shape->written_nodes * per_element_node);
  }
  return size;
}

}  // namespace quillet
