// The floor under the mesh readers: one thread, one pass, no checks, and nothing but the work.
// Parses an ordinary .2dm in the full form into plain tables.
//
//     floor_mesh full FILE         nodes, elements, extents and node kinds
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
  explicit Full(std::int64_t lines) : FullMesh(lines, lines) {}

  double sum() const {
    double total = x_min + x_max + y_min + y_max;
    for (std::int64_t i = 0; i < node_count; ++i) total += nodes[i].z + nodes[i].kind[0];
    for (std::int64_t i = 0; i < element_count; ++i) total += elements[i].nodes[2];
    return total;
  }
};

struct Elevations {
  explicit Elevations(std::int64_t lines) : z(make_array<float>(lines, Scheme{})) {
    for (auto& corner : corners) corner = make_array<std::int32_t>(lines, Scheme{});
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

template <typename Tables>
int run(const char* name) {
  const int file = ::open(name, O_RDONLY);
  if (file < 0) return EXIT_FAILURE;
  const std::int64_t size = ::lseek(file, 0, SEEK_END);
  ::close(file);

  const auto start = std::chrono::steady_clock::now();
  Tables tables(size / shortest_line);
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
