#include <fmt/format.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "dat_writer.h"
#include "flood_history.h"
#include "flood_mesh.h"
#include "flood_solution.h"
#include "flood_wave.h"
#include "mesh_writer.h"
#include "model_options.h"
#include "sup_writer.h"
#include "xmdf_results.h"

namespace quillet::example {
namespace {

constexpr float output_interval = 0.5f;  // h
constexpr float stored_maxima_time = 99999.0f;

std::vector<float> output_times(int count) {
  std::vector<float> times;
  for (int i = 0; i < count; ++i) times.push_back(static_cast<float>(i) * output_interval);
  return times;
}

// The same results as .dat files, one quantity each.
class DatResults {
 public:
  DatResults(const std::string& stem, const FloodSolution& solution)
      : level_(stem + "_h.dat", "Water Level", false, nodes(solution), cells(solution)),
        depth_(stem + "_d.dat", "Depth", false, nodes(solution), cells(solution)),
        velocity_(stem + "_V.dat", "Velocity", true, nodes(solution), cells(solution)) {}

  void write(float hours, const RESULT_MAPS_TYPE& maps) {
    level_.write(hours, maps.wet, maps.level);
    depth_.write(hours, maps.wet, maps.depth);
    velocity_.write(hours, maps.wet, maps.velocity);
  }

  void close() {
    level_.close();
    depth_.close();
    velocity_.close();
  }

 private:
  static std::int32_t nodes(const FloodSolution& solution) {
    return static_cast<std::int32_t>(solution.point_count());
  }
  static std::int32_t cells(const FloodSolution& solution) {
    return static_cast<std::int32_t>(solution.cell_count());
  }

  DatWriter level_;
  DatWriter depth_;
  DatWriter velocity_;
};

std::optional<XmdfResults> open_xmdf_results(const std::string& stem, const std::string& name,
                                             const MODEL_OPTIONS_TYPE& options) {
  if (!options.xmdf) return std::nullopt;
  return XmdfResults(stem + ".xmdf", name,
                     {options.compression, options.times, options.times_per_chunk});
}

void write_results(const std::string& stem, const FloodSolution& solution,
                   const SCENARIO_TYPE& scenario, const MODEL_OPTIONS_TYPE& options) {
  const std::vector<float> times = output_times(options.times);
  const std::vector<FLOOD_PROFILE_TYPE> profiles = flood_profiles(scenario, times);
  DatResults dat(stem, solution);
  std::optional<XmdfResults> xmdf = open_xmdf_results(stem, scenario.name, options);
  RESULT_MAPS_TYPE maps;
  FLOOD_HISTORY_TYPE history;
  for (std::size_t i = 0; i < times.size(); ++i) {
    solution.evaluate(profiles[i], maps);
    if (options.stored_maxima) track_history(times[i], output_interval, maps, history);
    dat.write(times[i], maps);
    if (xmdf) xmdf->write(times[i], maps);
  }
  if (options.stored_maxima) dat.write(stored_maxima_time, history.maxima);
  dat.close();
  if (!xmdf) return;
  if (options.stored_maxima) xmdf->write_history(history);
  xmdf->close();
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
  write_results(stem, solution, scenario, options);
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
