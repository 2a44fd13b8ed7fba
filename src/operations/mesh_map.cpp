#include "operations/mesh_map.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "mesh/load_mesh.h"
#include "mesh/mesh_messages.h"
#include "results/special_times.h"
#include "support/console.h"
#include "support/numbers.h"
#include "support/text.h"

namespace quillet {
namespace {

bool is_ordinary(float time) {
  return !(std::fabs(time) > last_ordinary_time);
}

std::string_view why_passed_over(float time) {
  if (IS_MARKER_MAP(time)) return marker_map_passed_over;
  if (time < 0) return stored_minimum_passed_over;
  return stored_maximum_passed_over;
}

// Differences and areas of much larger coordinates would be no numbers.
void check_coordinates(const std::string& mesh_name, const MESH_GEOMETRY_TYPE& mesh) {
  constexpr double farthest = 1e15;
  for (const double value : {mesh.x_minimum, mesh.x_maximum, mesh.y_minimum, mesh.y_maximum}) {
    if (mesh.node_count == 0 || std::fabs(value) <= farthest) continue;
    FAIL_READING(mesh_name, fmt::format("expected coordinates of up to 1e15 m, found {}", value));
  }
}

}  // namespace

MeshMap::MeshMap(const MeshMapJob& map_job) : job(map_job) {
  find_times();
  load_mesh();
}

void MeshMap::find_times() {
  seeks_times = job.time.has_value() || take_stored_alone();
  if (job.time) taken_times = {*job.time};
  ResultSource& source = *job.inputs.sources.front();
  if (seeks_times || source.at_end()) return;
  const std::vector<float> times = source.times_ahead();
  if (times.empty()) source.pass_next();  // which ends the run: the first one is cut short
  takes_special_times = std::none_of(times.begin(), times.end(), is_ordinary);
  std::copy_if(times.begin(), times.end(), std::back_inserter(taken_times),
               [&](float time) { return is_taken(time); });
}

// What a file keeps apart from the walk is all that there is in one without a walk.
bool MeshMap::take_stored_alone() {
  const ResultSource& source = *job.inputs.sources.front();
  if (source.has_walk()) return false;
  if (source.has_stored(Extreme::maximum)) taken_times.push_back(stored_maximum_time);
  if (source.has_stored(Extreme::minimum)) taken_times.push_back(stored_minimum_time);
  return !taken_times.empty();
}

bool MeshMap::is_taken(float time) const {
  return takes_special_times ? !IS_MARKER_MAP(time) : is_ordinary(time);
}

// Results per cell have a value for every element of a mesh whose nodes are others, or that is one
// of a finite-volume engine.
void MeshMap::load_mesh() {
  const auto& [node_count, cells, is_vector] = job.shape;
  const bool may_be_per_element = !cells || *cells == node_count;
  const auto nodes = may_be_per_element ? std::nullopt : std::optional(node_count);
  const std::string& name = job.inputs.types.front().mesh_file;
  MESH_GEOMETRY_TYPE loaded;
  SAY("Need to read 2dm file.");
  LOAD_MESH(name, nodes, cells, loaded);
  const bool has_other_nodes = loaded.node_count != node_count;
  values_per_element = loaded.element_count == node_count &&
                       (loaded.fv_mesh || (job.is_finite_volume && has_other_nodes));
  if (has_other_nodes && !values_per_element) {
    FAIL_ON_NODE_COUNT({name, loaded.node_count, loaded.element_count}, node_count);
  }
  check_coordinates(name, loaded);
  part_mesh = MAKE_PART_MESH(std::move(loaded));
  if (part_mesh.parts.empty()) FAIL_RUN("ERROR - Mesh has no elements: " + QUOTED(name));
  if (job.step.cell_count == 0) SIZE_STATUSES(job.step, part_mesh.element_count);
}

void MeshMap::read_each(const std::function<void(RES_TYPE& step)>& use) {
  ResultSource& source = *job.inputs.sources.front();
  if (seeks_times) {
    for (const float time : taken_times) {
      job.inputs.find_time(time, job.tolerance);
      source.read_at_time(time, job.tolerance, job.step);
      use(job.step);
    }
    return;
  }
  while (!source.at_end()) {
    const auto time = static_cast<float>(source.next_time());
    if (is_taken(time)) {
      source.read_next(job.step);
      use(job.step);
      continue;
    }
    SAY(std::string(why_passed_over(time)) + AREAL(time));
    source.pass_next();
  }
}

MeshValues MeshMap::values_of(const RES_TYPE& step, const LargeArray<float>& values) const {
  const bool has_dry = job.wet_dry_test && !values_per_element;
  return {.value = values.data(),
          .status = has_dry ? step.cell.status.data() : nullptr,
          .per_element = values_per_element,
          .take_nearest = job.holds_angles,
          .may_hold_codes = !step.is_vector};
}

}  // namespace quillet
