#include "mesh_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "flood_terrain.h"
#include "output_file.h"

namespace quillet::example {
namespace {

// Lines gathered into large writes. No line is longer than `longest_line`.
class LineBuffer {
 public:
  explicit LineBuffer(const std::string& path) : file_(path), bytes_(1 << 20) {}

  LineBuffer& text(std::string_view part) {
    end_ = std::copy(part.begin(), part.end(), end_);
    return *this;
  }

  LineBuffer& integer(std::int64_t value) {
    *end_++ = ' ';
    end_ = std::to_chars(end_, end_ + 20, value).ptr;
    return *this;
  }

  // Four decimals, by way of an integer: several times faster than a general conversion.
  LineBuffer& decimal(double value) {
    std::int64_t scaled = std::llround(std::abs(value) * 1.0e4);
    text(value < 0.0 ? " -" : " ");
    end_ = std::to_chars(end_, end_ + 20, scaled / 10'000).ptr;
    *end_ = '.';
    for (int place = 4; place > 0; --place, scaled /= 10) {
      end_[place] = static_cast<char>('0' + scaled % 10);
    }
    end_ += 5;
    return *this;
  }

  void end_line() {
    *end_++ = '\n';
    if (bytes_.data() + bytes_.size() - end_ < longest_line) flush();
  }

  void close() {
    flush();
    file_.close();
  }

 private:
  static constexpr std::ptrdiff_t longest_line = 400;

  void flush() {
    file_.write(bytes_.data(), static_cast<std::size_t>(end_ - bytes_.data()));
    end_ = bytes_.data();
  }

  OutputFile file_;
  std::vector<char> bytes_;
  char* end_ = bytes_.data();
};

// Geo-referencing: origin, angle, extents and spacings, in the full form also the offset of flagged
// elevations. The values begin in column 11; readers know the forms by the length of the line: 83
// characters and more, fewer, or fewer than 10.
void write_header(LineBuffer& out, const FLOOD_MESH_TYPE& mesh, MeshForm form) {
  std::string line = "MESH2D";
  const double rows = mesh.row_spacing;
  const double columns = mesh.column_spacing;
  if (form == MeshForm::full) {
    line += fmt::format("    {:.4f} {:.4f} {:11.4f} {:11.4f} {:11.4f} {:11.4f} {:11.4f} {:11.4f}",
                        map_origin.x, map_origin.y, valley_bearing, valley_length, valley_width,
                        rows, columns, 0.0);
  } else if (form == MeshForm::pre2005) {
    line += fmt::format("    {:.1f} {:.1f} {:.1f} {:.1f} {:.1f} {:.3f} {:.3f}", map_origin.x,
                        map_origin.y, valley_bearing, valley_length, valley_width, rows, columns);
  }
  out.text(line).end_line();
}

void write_nodes(LineBuffer& out, const FLOOD_MESH_TYPE& mesh, const std::vector<float>& bed,
                 bool full) {
  for (std::size_t i = 0; i < bed.size(); ++i) {
    const MAP_POINT_TYPE at = map_position(mesh.s[i], mesh.n[i]);
    out.text("ND").integer(static_cast<std::int64_t>(i) + 1);
    out.decimal(at.x).decimal(at.y).decimal(bed[i]);
    if (full) out.text(" 0 0.000 0.000 1.000");
    out.end_line();
  }
}

void write_cell_nodes(LineBuffer& out, const MESH_CELL_TYPE& cell,
                      std::initializer_list<int> slots) {
  for (const int slot : slots) out.integer(cell.nodes[slot] + 1);
}

void write_cell(LineBuffer& out, const MESH_CELL_TYPE& cell, std::int64_t id, MeshForm form) {
  if (cell.kind == 3) {
    out.text("E3T").integer(id);
    write_cell_nodes(out, cell, {0, 2, 1});
  } else if (cell.kind == 4) {
    out.text("E4Q").integer(id);
    write_cell_nodes(out, cell, {0, 3, 2, 1});
  } else {
    out.text("E9Q").integer(id);
    write_cell_nodes(out, cell, {0, 4, 1, 5, 2, 6, 3, 7, 8});
  }
  out.integer(cell.in_channel ? 1 : 2);
  if (form != MeshForm::fv) out.integer(cell.row + 1).integer(cell.column + 1);
  if (form == MeshForm::full) {
    out.text(" 1");
    if (cell.kind == 3) out.text(cell.upper ? " UP" : " LO");
  }
  out.end_line();
}

// The edge's nodes in lines of ten; the last node is marked by its sign.
void write_node_string(LineBuffer& out, std::int64_t first, std::int64_t last) {
  for (std::int64_t node = first; node <= last; ++node) {
    if ((node - first) % 10 == 0) out.text("NS");
    out.integer(node == last ? -node : node);
    if ((node - first) % 10 == 9 || node == last) out.end_line();
  }
}

}  // namespace

void write_mesh(const std::string& path, const FLOOD_MESH_TYPE& mesh, const std::vector<float>& bed,
                MeshForm form) {
  LineBuffer out(path);
  write_header(out, mesh, form);
  out.text("MESHPART \"Valley\"").end_line();
  write_nodes(out, mesh, bed, form == MeshForm::full);
  std::int64_t id = 0;
  for (const MESH_CELL_TYPE& cell : mesh.cells) write_cell(out, cell, ++id, form);
  const std::int64_t nodes = static_cast<std::int64_t>(bed.size());
  write_node_string(out, 1, mesh.first_row_nodes);
  write_node_string(out, nodes - mesh.last_row_nodes + 1, nodes);
  out.text("MAT 1 \"Channel\"").end_line();
  out.text("MAT 2 \"Flood plain\"").end_line();
  out.close();
}

}  // namespace quillet::example
