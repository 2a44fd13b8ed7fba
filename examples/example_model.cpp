#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "dat_writer.h"
#include "flood_mesh.h"
#include "flood_solution.h"
#include "flood_wave.h"
#include "mesh_writer.h"
#include "model_options.h"
#include "sup_writer.h"

namespace quillet::example {
namespace {

constexpr float output_interval = 0.5f;  // h
constexpr float stored_maxima_time = 99999.0f;

using OutputSink = std::function<void(float hours, const RESULT_MAPS_TYPE& maps)>;

std::vector<float> output_times(int count) {
  std::vector<float> times;
  for (int i = 0; i < count; ++i) times.push_back(static_cast<float>(i) * output_interval);
  return times;
}

// Gives the maps of all output times to `sink` in turn, at the end the stored maxima if asked for.
void walk_outputs(const FloodSolution& solution, const SCENARIO_TYPE& scenario,
                  const MODEL_OPTIONS_TYPE& options, const OutputSink& sink) {
  const std::vector<float> times = output_times(options.times);
  const std::vector<FLOOD_PROFILE_TYPE> profiles = flood_profiles(scenario, times);
  RESULT_MAPS_TYPE maps;
  RESULT_MAPS_TYPE maxima;
  for (std::size_t i = 0; i < times.size(); ++i) {
    solution.evaluate(profiles[i], maps);
    if (options.stored_maxima) track_maxima(maps, maxima);
    sink(times[i], maps);
  }
  if (options.stored_maxima) sink(stored_maxima_time, maxima);
}

void write_dat_results(const std::string& stem, const FloodSolution& solution,
                       const SCENARIO_TYPE& scenario, const MODEL_OPTIONS_TYPE& options) {
  const auto nodes = static_cast<std::int32_t>(solution.point_count());
  const auto cells = static_cast<std::int32_t>(solution.cell_count());
  DatWriter level(stem + "_h.dat", "Water Level", false, nodes, cells);
  DatWriter depth(stem + "_d.dat", "Depth", false, nodes, cells);
  DatWriter velocity(stem + "_V.dat", "Velocity", true, nodes, cells);
  walk_outputs(solution, scenario, options, [&](float hours, const RESULT_MAPS_TYPE& maps) {
    level.write(hours, maps.wet, maps.level);
    depth.write(hours, maps.wet, maps.depth);
    velocity.write(hours, maps.wet, maps.velocity);
  });
  level.close();
  depth.close();
  velocity.close();
}

void write_scenario(const FLOOD_MESH_TYPE& mesh, const SCENARIO_TYPE& scenario,
                    const MODEL_OPTIONS_TYPE& options) {
  const std::string name = scenario.name;
  const std::string stem = (std::filesystem::path(options.folder) / name).string();
  const std::vector<float> bed = bed_elevations(mesh, scenario.levee_raise);
  write_mesh(stem + ".2dm", mesh, bed, options.form);
  const bool at_cells = options.form == MeshForm::fv;
  const FloodSolution solution(mesh, at_cells ? cell_points(mesh, bed) : node_points(mesh, bed),
                               at_cells);
  write_dat_results(stem, solution, scenario, options);
  write_sup(stem + ".sup", name + ".2dm", {name + "_h.dat", name + "_d.dat", name + "_V.dat"});
}

void create_folder(const std::string& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!std::filesystem::is_directory(folder)) {
    throw std::runtime_error(
        fmt::format("cannot create folder \"{}\": {}", folder, error.message()));
  }
}

void write_model(const MODEL_OPTIONS_TYPE& options) {
  create_folder(options.folder);
  const FLOOD_MESH_TYPE mesh = make_mesh(options.nodes, options.quad9);
  for (int i = 0; i < options.scenarios; ++i) write_scenario(mesh, scenarios[i], options);
  if (options.scenarios == 2) {
    const std::filesystem::path folder = options.folder;
    write_sup((folder / "levels.sup").string(), "run1.2dm", {"run1_h.dat", "run2_h.dat"});
  }
  fmt::print("{} nodes, {} cells, {} output times{}, {} in \"{}\"\n", mesh.s.size(),
             mesh.cells.size(), options.times, options.stored_maxima ? " and stored maxima" : "",
             options.scenarios == 2 ? "run1 and run2" : "run1", options.folder);
}

}  // namespace
}  // namespace quillet::example

int main(int argc, char** argv) {
  try {
    const auto options = quillet::example::parse_options(argc, argv);
    if (options.help) {
      fmt::print("{}", quillet::example::usage_text());
    } else {
      quillet::example::write_model(options);
    }
    return 0;
  } catch (const std::exception& error) {
    fmt::print(stderr, "quillet_example_model: {}\n", error.what());
    return 1;
  }
}
