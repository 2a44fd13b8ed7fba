#include <span>
#include <string>
#include <string_view>

#include "ensight/geometry.h"
#include "ensight/geometry_form.h"
#include "ensight/item_writer.h"

namespace quillet {
namespace {

std::string_view source_text(const EnsightMesh& mesh) {
  return mesh.fv_mesh ? "Converted from ORVANE FV .2dm file." : "Converted from ORVANE .2dm file.";
}

std::string_view output_text(const EnsightMesh& mesh) {
  if (!mesh.fv_mesh) return RESOLUTION_TEXT(mesh);
  return mesh.high_resolution ? "Cell Centred Output (output == dat)"
                              : "Cell Cornered Output (output == datv)";
}

class TextGeometry : public GeometryForm {
 public:
  using GeometryForm::GeometryForm;

 private:
  std::int64_t expected_size() const override {
    return MESH_BODY_SIZE(mesh, i10_line_width + 3 * e12_5_line_width, i10_line_width + 1,
                          i10_width);
  }

  void write_head() override {
    line(source_text(mesh));
    line(output_text(mesh));
    line("node id given");
    line("element id given");
    write_extents();
    line("part");
    line(I10_TEXT(1));
    line("2D ORVANE Elements");
  }

  void write_coordinates() override {
    line("coordinates");
    line(I10_TEXT(mesh.node_count));
    WRITE_LINES(out, mesh.node_count, i10_line_width, [](std::int64_t i, char* at) {
      return WRITE_I10(static_cast<std::int32_t>(i + 1), at);
    });
    write_shifted(mesh.x, mesh.x_minimum);
    write_shifted(mesh.y, mesh.y_minimum);
    WRITE_LINES(out, mesh.node_count, e12_5_line_width,
                [z = mesh.z.data()](std::int64_t i, char* at) { return WRITE_E12_5(z[i], at); });
  }

  void write_block(const ElementBlock& block) override {
    line(block.shape->name);
    line(I10_TEXT(block.count()));
    WRITE_LINES(
        out, block.count(), i10_line_width,
        [ids = block.ids.data()](std::int64_t i, char* at) { return WRITE_I10(ids[i], at); });
    const int nodes = block.shape->written_nodes;
    WRITE_LINES(out, block.count(), nodes * i10_width + 1,
                [nodes, node = block.nodes.data()](std::int64_t i, char* at) {
                  for (int k = 0; k < nodes; ++k) at = WRITE_I10(node[i * nodes + k], at);
                  return at;
                });
  }

  void line(std::string_view text) {
    out.write(text);
    out.write("\n");
  }

  void write_extents() {
    line("extents");
    line(extent_from_zero(mesh.x_maximum - mesh.x_minimum));
    line(extent_from_zero(mesh.y_maximum - mesh.y_minimum));
    line(E12_5_TEXT(mesh.z_minimum) + E12_5_TEXT(mesh.z_maximum));
  }

  // A plain decimal can fill its columns and would run into the zero.
  static std::string extent_from_zero(double extent) {
    const std::string end = COORDINATE_TEXT(extent);
    return E12_5_TEXT(0.0) + (end.front() == ' ' ? "" : " ") + end;
  }

  void write_shifted(std::span<const double> values, double shift) {
    WRITE_LINES(out, mesh.node_count, e12_5_line_width,
                [shift, value = values.data()](std::int64_t i, char* at) {
                  return WRITE_COORDINATE(value[i] - shift, at);
                });
  }
};

}  // namespace

void WRITE_ENSIGHT_GEO_TEXT(const EnsightMesh& mesh, const std::string& file_name,
                            ExportSteps& steps) {
  WRITE_GEOMETRY<TextGeometry>("Creating Ensight Gold Geometry File: ", mesh, file_name, steps);
}

}  // namespace quillet
