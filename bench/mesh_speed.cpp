// Times the mesh readers; floor_mesh is what they are compared with.
//
//     mesh_speed full FILE         LOAD_MESH
//     mesh_speed elevations FILE   READ_2DM_ELEVATIONS, with the counts of the file
//
// Seconds and MB/s go to standard error, the readers' own lines to standard output.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "mesh/card_counts.h"
#include "mesh/load_mesh.h"
#include "mesh/read_2dm_elevations.h"

namespace {

using Clock = std::chrono::steady_clock;

void report(const std::string& name, Clock::time_point start) {
  const std::chrono::duration<double> time = Clock::now() - start;
  const double size = static_cast<double>(quillet::InputUnit(name).size());
  std::fprintf(stderr, "%.4f s, %.0f MB/s\n", time.count(), size / 1e6 / time.count());
}

void time_full(const std::string& name) {
  const auto start = Clock::now();
  quillet::MESH_TYPE mesh;
  quillet::LOAD_MESH(name, std::nullopt, std::nullopt, mesh);
  report(name, start);
}

void time_elevations(const std::string& name) {
  const auto counts = quillet::COUNT_CARDS(quillet::InputUnit(name));
  const auto start = Clock::now();
  const quillet::InputUnit unit(name);
  quillet::LargeArray<float> elevations;
  quillet::CornerArrays corners;
  quillet::READ_2DM_ELEVATIONS(
      unit, elevations, static_cast<std::int32_t>(counts.nodes), corners,
      static_cast<std::int32_t>(counts.triangles + counts.quads4 + counts.quads9));
  report(name, start);
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view mode = count == 3 ? arguments[1] : "";
  if (mode == "full") {
    time_full(arguments[2]);
  } else if (mode == "elevations") {
    time_elevations(arguments[2]);
  } else {
    std::fputs("mesh_speed full|elevations FILE\n", stderr);
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
