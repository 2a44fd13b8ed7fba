// The floor under -ensight for one .dat input on a mesh of triangles and 4-node quadrilaterals: one
// thread, the whole mesh parsed, large reads and writes, and nothing but the work. No checks, no
// console, no case file. The geometry and variable files are those of quillet byte for byte.
//
//     floor_ensight BASE NAME MESH DAT
//
// NAME is what stands between BASE and the number of a variable file and, with blanks for "_", in
// its first line.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "floor_files.h"
#include "floor_full_mesh.h"
#include "floor_number_forms.h"

namespace quillet_floor {
namespace {

constexpr std::int64_t piece_bytes = 256 << 10;

struct Mesh : FullMesh {
  explicit Mesh(const DatFile& results) : FullMesh(results.nodes, results.cells) {}

  std::int64_t count(int kind) const { return static_cast<std::int64_t>(ids[kind - 3].size()); }
  const std::int32_t* corners(std::int32_t id) const { return FullMesh::corners + 4 * (id - 1); }

  std::vector<std::int32_t> ids[2];  // triangles, quadrilaterals
  double x_min = 1.0e9, x_max = -1.0e9, y_min = 1.0e9, y_max = -1.0e9;
  float z_min = 1.0e9F, z_max = -1.0e9F;
};

Mesh read_mesh(const char* name, const DatFile& results) {
  Mesh mesh(results);
  take_lines(name, mesh);
  for (std::int64_t i = 0; i < mesh.node_count; ++i) {
    mesh.x_min = std::min(mesh.x_min, mesh.x[i]);
    mesh.x_max = std::max(mesh.x_max, mesh.x[i]);
    mesh.y_min = std::min(mesh.y_min, mesh.y[i]);
    mesh.y_max = std::max(mesh.y_max, mesh.y[i]);
    mesh.z_min = std::min(mesh.z_min, mesh.z[i]);
    mesh.z_max = std::max(mesh.z_max, mesh.z[i]);
  }
  for (auto& ids : mesh.ids) ids.reserve(static_cast<std::size_t>(mesh.element_count));
  for (std::int32_t i = 0; i < mesh.element_count; ++i) {
    mesh.ids[mesh.corners(i + 1)[3] == 0 ? 0 : 1].push_back(i + 1);
  }
  return mesh;
}

// Fills large pieces in place and hands them to the system.
class Pieces {
 public:
  Pieces(const std::string& name, std::int64_t size) : file(name.c_str(), size) {}

  void text(const std::string& line) { copy(line.data(), static_cast<std::int64_t>(line.size())); }
  void copy(const void* data, std::int64_t count) {
    std::memcpy(room(count), data, static_cast<std::size_t>(count));
    at += count;
  }
  char* room(std::int64_t count) {
    if (at + count > buffer + piece_bytes) flush();
    return at;
  }
  template <typename Write>
  void items(std::int64_t count, Write write) {
    constexpr std::int64_t longest_item = 48;
    constexpr std::int64_t at_once = piece_bytes / 8 / longest_item;
    for (std::int64_t first = 0; first < count; first += at_once) {
      char* to = room(at_once * longest_item);
      const std::int64_t end = std::min(first + at_once, count);
      for (std::int64_t i = first; i < end; ++i) to = write(i, to);
      at = to;
    }
  }
  void lines(const float* values, std::int64_t count) {
    char* to = room(count * e12_5_line_width);
    for (std::int64_t i = 0; i < count; ++i) {
      to = write_e12_5(values[i], to);
      *to++ = '\n';
    }
    at = to;
  }
  void close() {
    flush();
    file.close();
  }

 private:
  void flush() {
    file.write(buffer, at - buffer);
    at = buffer;
  }

  static char buffer[piece_bytes];
  OutFile file;
  char* at = buffer;
};
alignas(4096) char Pieces::buffer[piece_bytes];

char* end_line(char* at) {
  *at = '\n';
  return at + 1;
}

std::string real_text(double value) {
  char text[e12_5_width];
  write_e12_5(value, text);
  return {text, sizeof text};
}

std::string extent_text(double extent) {
  char text[1 + e12_5_width] = {' '};
  write_coordinate(extent, text + 1);
  const bool is_full = text[1] != ' ';
  return real_text(0) + std::string(text + (is_full ? 0 : 1), text + sizeof text) + '\n';
}

std::string count_text(std::int64_t value) {
  char text[i10_line_width];
  end_line(write_i10(static_cast<std::int32_t>(value), text));
  return {text, sizeof text};
}

void write_text_block(const Mesh& mesh, int kind, Pieces& out) {
  const auto& ids = mesh.ids[kind - 3];
  if (ids.empty()) return;
  const auto count = mesh.count(kind);
  out.text(kind == 3 ? "tria3\n" : "quad4\n");
  out.text(count_text(count));
  out.items(count, [&](std::int64_t i, char* at) {
    return end_line(write_i10(ids[static_cast<std::size_t>(i)], at));
  });
  out.items(count, [&](std::int64_t i, char* at) {
    const std::int32_t* const corner = mesh.corners(ids[static_cast<std::size_t>(i)]);
    for (int n = 0; n < kind; ++n) at = write_i10(corner[n], at);
    return end_line(at);
  });
}

void write_text_geometry(const Mesh& mesh, const std::string& name) {
  Pieces out(name, mesh.node_count * 50 + 42 * mesh.count(3) + 52 * mesh.count(4));
  out.text(
      "Converted from ORVANE .2dm file.\nStandard Resolution Output\nnode id given\n"
      "element id given\nextents\n");
  out.text(extent_text(mesh.x_max - mesh.x_min));
  out.text(extent_text(mesh.y_max - mesh.y_min));
  out.text(real_text(mesh.z_min) + real_text(mesh.z_max) + '\n');
  out.text("part\n" + count_text(1) + "2D ORVANE Elements\ncoordinates\n" +
           count_text(mesh.node_count));
  out.items(mesh.node_count, [](std::int64_t i, char* at) {
    return end_line(write_i10(static_cast<std::int32_t>(i + 1), at));
  });
  out.items(mesh.node_count, [&](std::int64_t i, char* at) {
    return end_line(write_coordinate(mesh.x[i] - mesh.x_min, at));
  });
  out.items(mesh.node_count, [&](std::int64_t i, char* at) {
    return end_line(write_coordinate(mesh.y[i] - mesh.y_min, at));
  });
  out.items(mesh.node_count,
            [&](std::int64_t i, char* at) { return end_line(write_e12_5(mesh.z[i], at)); });
  write_text_block(mesh, 3, out);
  write_text_block(mesh, 4, out);
  out.close();
}

template <typename Value>
char* store(Value value, char* at) {
  std::memcpy(at, &value, sizeof value);
  return at + sizeof value;
}

template <typename Value>
void put(Value value, Pieces& out) {
  out.copy(&value, sizeof value);
}

void put_text(std::string text, Pieces& out) {
  text.resize(80, ' ');
  out.text(text);
}

void write_binary_block(const Mesh& mesh, int kind, Pieces& out) {
  const auto& ids = mesh.ids[kind - 3];
  if (ids.empty()) return;
  const auto count = mesh.count(kind);
  put_text(kind == 3 ? "tria3" : "quad4", out);
  put(static_cast<std::int32_t>(count), out);
  out.items(count,
            [&](std::int64_t i, char* at) { return store(ids[static_cast<std::size_t>(i)], at); });
  out.items(count, [&](std::int64_t i, char* at) {
    const std::int32_t* const corner = mesh.corners(ids[static_cast<std::size_t>(i)]);
    for (int n = 0; n < kind; ++n) at = store(corner[n], at);
    return at;
  });
}

void write_binary_geometry(const Mesh& mesh, const std::string& name) {
  Pieces out(name, mesh.node_count * 24 + 16 * mesh.count(3) + 20 * mesh.count(4));
  for (const char* text :
       {"Fortran Binary", "Converted from ORVANE output", "Standard Resolution Output",
        "node id given", "element id given", "extents"}) {
    put_text(text, out);
  }
  put(0.0F, out);
  put(mesh.x_max - mesh.x_min, out);
  put(0.0F, out);
  put(mesh.y_max - mesh.y_min, out);
  put(mesh.z_min, out);
  put(mesh.z_max, out);
  for (const char* text : {"part", "ORVANE", "coordinates"}) put_text(text, out);
  put(static_cast<std::int32_t>(mesh.node_count), out);
  out.items(mesh.node_count,
            [](std::int64_t i, char* at) { return store(static_cast<std::int32_t>(i + 1), at); });
  out.items(mesh.node_count,
            [&](std::int64_t i, char* at) { return store(mesh.x[i] - mesh.x_min, at); });
  out.items(mesh.node_count,
            [&](std::int64_t i, char* at) { return store(mesh.y[i] - mesh.y_min, at); });
  out.items(mesh.node_count, [&](std::int64_t i, char* at) { return store(mesh.z[i], at); });
  write_binary_block(mesh, 3, out);
  write_binary_block(mesh, 4, out);
  out.close();
}

void write_values(const float* values, std::int64_t stride, const std::uint8_t* wet,
                  std::int64_t nodes, Pieces& out) {
  constexpr std::int64_t at_once = 1024;
  float piece[at_once];
  for (std::int64_t first = 0; first < nodes; first += at_once) {
    const std::int64_t count = std::min(at_once, nodes - first);
    for (std::int64_t i = 0; i < count; ++i) {
      piece[i] = wet[first + i] != 0 ? values[(first + i) * stride] : 0.0F;
    }
    out.lines(piece, count);
  }
}

void write_zeros(std::int64_t nodes, Pieces& out) {
  out.items(nodes, [](std::int64_t, char* at) {
    std::memcpy(at, " 0.00000E+00\n", e12_5_line_width);
    return at + e12_5_line_width;
  });
}

std::string number_text(std::int64_t number) {
  std::string text = std::to_string(10000 + number);
  text[0] = '.';
  return text;
}

void write_variables(const Mesh& mesh, const DatFile& in, const std::string& base,
                     const std::string& name) {
  auto* const status = make_array<std::int8_t>(in.cells);
  auto* const wet = make_array<std::uint8_t>(in.nodes);
  auto* const values = make_array<float>(in.components * in.nodes);
  std::string description = name.substr(1);
  std::replace(description.begin(), description.end(), '_', ' ');
  for (std::int64_t step = 0; step < in.times; ++step) {
    in.read_statuses(step, status);
    in.read_values(step, 0, in.nodes, values);
    std::memset(wet, 0, static_cast<std::size_t>(in.nodes));
    mesh.mark_active_nodes(status, wet);
    Pieces out(base + name + number_text(step + 1),
               in.nodes * e12_5_line_width * (in.components == 2 ? 3 : 1));
    out.text(description + "\npart\n" + count_text(1) + "coordinates\n");
    for (std::int64_t i = 0; i < in.components; ++i) {
      write_values(values + i, in.components, wet, in.nodes, out);
    }
    if (in.components == 2) write_zeros(in.nodes, out);
    out.close();
  }
}

}  // namespace
}  // namespace quillet_floor

int main(int count, char** arguments) {
  using namespace quillet_floor;
  if (count != 5) {
    std::fputs("floor_ensight BASE NAME MESH DAT, see the head of the source\n", stderr);
    return EXIT_FAILURE;
  }
  const std::string base = arguments[1];
  const DatFile in(arguments[4]);
  const Mesh mesh = read_mesh(arguments[3], in);
  write_text_geometry(mesh, base + "_text.geo");
  write_binary_geometry(mesh, base + "_binary.geo");
  write_variables(mesh, in, base, arguments[2]);
  return EXIT_SUCCESS;
}
