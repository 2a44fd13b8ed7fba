#include <bit>
#include <cstring>
#include <span>
#include <string>
#include <string_view>

#include "ensight/geometry.h"
#include "ensight/geometry_form.h"
#include "ensight/item_writer.h"

namespace quillet {
namespace {

static_assert(std::endian::native == std::endian::little, "the file holds little-endian numbers");

constexpr std::size_t text_size = 80;
constexpr std::int64_t size_of_node = 2 * sizeof(std::int32_t) + 2 * sizeof(double);

template <typename Value>
char* store(Value value, char* at) {
  std::memcpy(at, &value, sizeof value);
  return at + sizeof value;
}

class BinaryGeometry : public GeometryForm {
 public:
  using GeometryForm::GeometryForm;

 private:
  std::int64_t expected_size() const override {
    return MESH_BODY_SIZE(mesh, size_of_node, sizeof(std::int32_t), sizeof(std::int32_t));
  }

  void write_head() override {
    text("Fortran Binary");
    text("Converted from ORVANE output");
    text(RESOLUTION_TEXT(mesh));
    text("node id given");
    text("element id given");
    write_extents();
    text("part");
    text("ORVANE");
  }

  void write_coordinates() override {
    text("coordinates");
    number(mesh.node_count);
    WRITE_ITEMS(out, mesh.node_count, sizeof(std::int32_t), [](std::int64_t i, char* at) {
      return store(static_cast<std::int32_t>(i + 1), at);
    });
    write_shifted(mesh.x, mesh.x_minimum);
    write_shifted(mesh.y, mesh.y_minimum);
    array(mesh.z);
  }

  void write_block(const ElementBlock& block) override {
    text(block.shape->name);
    number(block.count());
    array(block.ids);
    if (block.shape->corners == block.shape->written_nodes) {
      array(block.nodes);
    } else {
      write_around(block);
    }
  }

  void text(std::string_view item) {
    std::string padded(item);
    padded.resize(text_size, ' ');
    out.write(padded);
  }

  template <typename Value>
  void number(Value value) {
    out.write(&value, sizeof value);
  }

  void write_extents() {
    text("extents");
    number(0.0F);
    number(mesh.x_maximum - mesh.x_minimum);
    number(0.0F);
    number(mesh.y_maximum - mesh.y_minimum);
    number(mesh.z_minimum);
    number(mesh.z_maximum);
  }

  template <typename Values>
  void array(const Values& values) {
    out.write(values.data(), values.size() * sizeof *values.data());
  }

  // Corner, mid-side, corner, ... as one goes round an element.
  void write_around(const ElementBlock& block) {
    const int corners = block.shape->corners;
    const int nodes = block.shape->written_nodes;
    WRITE_ITEMS(out, block.count(), nodes * static_cast<int>(sizeof(std::int32_t)),
                [corners, nodes, node = block.nodes.data()](std::int64_t i, char* at) {
                  const std::int32_t* const corner = node + i * nodes;
                  for (int k = 0; k < corners; ++k) {
                    at = store(corner[k + corners], store(corner[k], at));
                  }
                  return at;
                });
  }

  void write_shifted(std::span<const double> values, double shift) {
    WRITE_ITEMS(out, mesh.node_count, sizeof(double),
                [shift, value = values.data()](std::int64_t i, char* at) {
                  return store(value[i] - shift, at);
                });
  }
};

}  // namespace

void WRITE_ENSIGHT_GEO_BINARY(const EnsightMesh& mesh, const std::string& file_name,
                              ExportSteps& steps) {
  WRITE_GEOMETRY<BinaryGeometry>("Creating Ensight Gold Geometry File (Binary): ", mesh, file_name,
                                 steps);
}

}  // namespace quillet
