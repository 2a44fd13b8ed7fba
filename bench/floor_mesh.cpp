// The floor under the mesh readers: one thread, one pass, no checks, and nothing but the work.
// Parses a .2dm into plain tables.
//
//     floor_mesh full FILE         coordinates, elevations and all nodes of elements
//     floor_mesh elevations FILE   elevations and corners alone
//
// Prints seconds, MB/s and sums over the tables, which keep the work from being left out.

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "floor_full_mesh.h"

namespace quillet_floor {
namespace {

// Lines are no shorter than this, which bounds the tables.
constexpr std::int64_t shortest_line = 12;

struct Full : FullMesh {
  Full(std::int64_t lines, Form form_of_file) : FullMesh(lines, lines) { form = form_of_file; }

  double sum() const {
    double total = 0;
    for (std::int64_t i = 0; i < node_count; ++i) total += x[i] + y[i] + z[i];
    for (std::int64_t i = 0; i < element_count; ++i) total += corners[4 * i + 2];
    return total;
  }
};

struct Elevations {
  Elevations(std::int64_t lines, Form) : z(make_array<float>(lines)) {
    for (auto& corner : corners) corner = make_array<std::int32_t>(lines);
  }

  const char* take_node(const char* at) {
    ++node_count;
    return NodeElevations{z}.take_node(at);
  }

  template <int kind>
  const char* take_element(const char* at) {
    if (kind == 9) return at;
    std::int32_t id = 0;
    at = take_integer(at, id);
    std::int32_t nodes[9] = {};
    at = take_nodes<kind>(at, nodes);
    for (int slot = 0; slot < 4; ++slot) corners[slot][id - 1] = nodes[slot];
    ++element_count;
    return at;
  }

  double sum() const {
    double total = 0;
    for (std::int64_t i = 0; i < node_count; ++i) total += z[i];
    for (std::int64_t i = 0; i < element_count; ++i) total += corners[2][i];
    return total;
  }

  float* z;
  std::int32_t* corners[4];
  std::int64_t node_count = 0, element_count = 0;
};

// Told by the length of the first line.
Form form_of(int file) {
  char line[256] = {};
  const ssize_t length = ::pread(file, line, sizeof line, 0);
  const std::string_view text(line, length < 0 ? 0 : static_cast<std::size_t>(length));
  const std::size_t end = text.find_last_not_of(" \r", text.find('\n') - 1) + 1;
  if (end < 10) return Form::fv;
  return end < 83 ? Form::pre_2005 : Form::full;
}

template <typename Tables>
int run(const char* name) {
  const int file = ::open(name, O_RDONLY);
  if (file < 0) return EXIT_FAILURE;
  const Form form = form_of(file);
  const std::int64_t size = ::lseek(file, 0, SEEK_END);
  ::close(file);

  const auto start = std::chrono::steady_clock::now();
  Tables tables(size / shortest_line, form);
  take_lines(name, tables);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  std::printf("%.4f s, %.0f MB/s, %lld nodes, %lld elements, sum %.17g\n", time.count(),
              static_cast<double>(size) / 1e6 / time.count(),
              static_cast<long long>(tables.node_count),
              static_cast<long long>(tables.element_count), tables.sum());
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace quillet_floor

int main(int count, char** arguments) {
  using namespace quillet_floor;
  const std::string_view mode = count == 3 ? arguments[1] : "";
  if (mode == "full") return run<Full>(arguments[2]);
  if (mode == "elevations") return run<Elevations>(arguments[2]);
  std::fputs("floor_mesh full|elevations FILE\n", stderr);
  return EXIT_FAILURE;
}
