// Times the mesh readers; floor_mesh is what they are compared with.
//
//     mesh_speed full FILE         LOAD_MESH with the counts of the file, as results tell them
//     mesh_speed scanned FILE      LOAD_MESH without any, as where results do not tell them
//     mesh_speed elevations FILE   READ_2DM_ELEVATIONS with the counts of the file
//
// A number of threads may follow; one unless it does. Seconds and MB/s go to standard error.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

#include "mesh/load_mesh.h"
#include "mesh/read_2dm_elevations.h"
#include "support/work_crew.h"

namespace {

using Clock = std::chrono::steady_clock;

void report(const std::string& name, Clock::time_point start) {
  const std::chrono::duration<double> time = Clock::now() - start;
  const double size = static_cast<double>(quillet::InputUnit(name).size());
  std::fprintf(stderr, "%.4f s, %.0f MB/s\n", time.count(), size / 1e6 / time.count());
}

// As the mesh itself tells them; reading it also warms the file up.
struct Counts {
  explicit Counts(const std::string& name) {
    quillet::MESH_GEOMETRY_TYPE mesh;
    quillet::LOAD_MESH(name, std::nullopt, std::nullopt, mesh);
    nodes = mesh.node_count;
    cells = mesh.element_count;
  }
  std::int32_t nodes;
  std::int32_t cells;
};

void time_loading(const std::string& name, std::optional<std::int32_t> nodes,
                  std::optional<std::int32_t> cells) {
  const auto start = Clock::now();
  quillet::MESH_GEOMETRY_TYPE mesh;
  quillet::LOAD_MESH(name, nodes, cells, mesh);
  report(name, start);
}

void time_elevations(const std::string& name, const Counts& counts) {
  const auto start = Clock::now();
  const quillet::InputUnit unit(name);
  quillet::LargeArray<float> elevations;
  quillet::CornerArrays corners;
  quillet::READ_2DM_ELEVATIONS(unit, elevations, counts.nodes, corners, counts.cells);
  report(name, start);
}

}  // namespace

int main(int count, char** arguments) {
  const bool is_call = count == 3 || count == 4;
  const std::string_view mode = is_call ? arguments[1] : "";
  const std::string name = is_call ? arguments[2] : "";
  if (count == 4) quillet::WORK_CREW().set_thread_count(std::max(std::atoi(arguments[3]), 1));
  if (mode == "full") {
    const Counts counts(name);
    time_loading(name, counts.nodes, counts.cells);
  } else if (mode == "scanned") {
    time_loading(name, std::nullopt, std::nullopt);
  } else if (mode == "elevations") {
    time_elevations(name, Counts(name));
  } else {
    std::fputs("mesh_speed full|scanned|elevations FILE [THREADS]\n", stderr);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
