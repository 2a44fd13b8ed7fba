// What both forms of the geometry file have in common: their parts, the console lines around each,
// and the log file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ensight/ensight_mesh.h"
#include "ensight/export_steps.h"
#include "support/output_unit.h"

namespace quillet {

class GeometryForm {
 public:
  // Mesh and output outlive the object.
  GeometryForm(const EnsightMesh& source, OutputUnit& unit) : mesh(source), out(unit) {}
  GeometryForm(const GeometryForm&) = delete;
  GeometryForm& operator=(const GeometryForm&) = delete;
  virtual ~GeometryForm() = default;

  // Writes all of it, until the system refuses, without a line on the console.
  void write_all();

  // Shows the lines of a file whose turn has come, writes what is not written, and the log file.
  void tell(FileAhead& file);

 protected:
  virtual std::int64_t expected_size() const = 0;  // but for a few lines
  virtual void write_head() = 0;
  virtual void write_coordinates() = 0;
  virtual void write_block(const ElementBlock& block) = 0;

  const EnsightMesh& mesh;
  OutputUnit& out;

 private:
  void begin();
  void write_part(std::size_t number);
  void complete_part(std::size_t number, FileAhead& file);

  std::size_t parts_written = 0;  // by a helper: the coordinates, then the blocks
};

// Creates the file, and has it written at its turn or by the crew before. `introduction` is the
// line that names it.
template <typename Form>
void WRITE_GEOMETRY(const std::string& introduction, const EnsightMesh& mesh,
                    const std::string& file_name, ExportSteps& steps) {
  steps.say(introduction + file_name);
  const auto file = std::make_shared<FileAhead>(file_name);
  const auto form = std::make_shared<Form>(mesh, file->out());
  if (steps.are_ahead()) file->write_ahead([form] { form->write_all(); });
  steps.then([file, form] { form->tell(*file); }, steps.are_ahead() ? file : nullptr);
}

// Second description line of a mesh that is no finite-volume mesh; of any in the binary form.
std::string_view RESOLUTION_TEXT(const EnsightMesh& mesh);

// Bytes of all coordinates and elements when every number of a node together takes `per_node`, an
// element `per_element` and each of its nodes `per_element_node`.
std::int64_t MESH_BODY_SIZE(const EnsightMesh& mesh, std::int64_t per_node,
                            std::int64_t per_element, std::int64_t per_element_node);

}  // namespace quillet
