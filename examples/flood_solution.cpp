#include "flood_solution.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

#include "flood_terrain.h"

namespace quillet::example {
namespace {

// Manning's n.
constexpr double channel_roughness = 0.035;
constexpr double plain_roughness = 0.060;
constexpr double pond_roughness = 0.120;

float between(const std::vector<float>& profile, std::int32_t station, float weight) {
  const float value = profile[station];
  return value + weight * (profile[station + 1] - value);
}

template <typename T>
void keep_greater(const std::vector<T>& values, std::vector<T>& greatest) {
  for (std::size_t i = 0; i < values.size(); ++i) greatest[i] = std::max(greatest[i], values[i]);
}

template <typename T>
void keep_smaller(const std::vector<T>& values, std::vector<T>& smallest) {
  for (std::size_t i = 0; i < values.size(); ++i) smallest[i] = std::min(smallest[i], values[i]);
}

// `wins` compares the magnitude of a velocity with that of the one kept.
template <typename Comparison>
void keep_velocities(const std::vector<float>& velocity, std::vector<float>& kept,
                     Comparison wins) {
  for (std::size_t i = 0; i < velocity.size(); i += 2) {
    const float x = velocity[i];
    const float y = velocity[i + 1];
    if (wins(magnitude(x, y), magnitude(kept[i], kept[i + 1]))) {
      kept[i] = x;
      kept[i + 1] = y;
    }
  }
}

}  // namespace

RESULT_POINTS_TYPE node_points(const FLOOD_MESH_TYPE& mesh, const std::vector<float>& bed) {
  return {mesh.s, mesh.n, bed};
}

RESULT_POINTS_TYPE cell_points(const FLOOD_MESH_TYPE& mesh, const std::vector<float>& bed) {
  RESULT_POINTS_TYPE points;
  for (const MESH_CELL_TYPE& cell : mesh.cells) {
    double s = 0.0;
    double n = 0.0;
    double z = 0.0;
    for (int k = 0; k < cell.corners(); ++k) {
      s += mesh.s[cell.nodes[k]];
      n += mesh.n[cell.nodes[k]];
      z += bed[cell.nodes[k]];
    }
    points.s.push_back(s / cell.corners());
    points.n.push_back(n / cell.corners());
    points.bed.push_back(static_cast<float>(z / cell.corners()));
  }
  return points;
}

FloodSolution::FloodSolution(const FLOOD_MESH_TYPE& mesh, RESULT_POINTS_TYPE points, bool at_cells)
    : mesh_(mesh), bed_(std::move(points.bed)), at_cells_(at_cells) {
  constants_.reserve(bed_.size());
  for (std::size_t i = 0; i < bed_.size(); ++i) {
    constants_.push_back(constants_at(points.s[i], points.n[i]));
  }
}

FloodSolution::POINT_CONSTANTS_TYPE FloodSolution::constants_at(double s, double n) {
  const double place = std::clamp(s / valley_length, 0.0, 1.0) * (stations - 1);
  const int station = std::min(static_cast<int>(place), stations - 2);
  const bool in_pond = behind_levee(s, n);
  const double distance = channel_distance(s, n);
  const double share = channel_share(distance);
  const double roughness =
      in_pond ? pond_roughness : plain_roughness + share * (channel_roughness - plain_roughness);
  const double speed = std::sqrt(bed_slope) / roughness;
  // The flow follows the channel's bends fully in the channel and a little on the plains.
  const double bend = meander_slope(s) * (0.25 + 0.75 * share);
  const double length = std::sqrt(1.0 + bend * bend);
  const double outwards = 0.25 * std::tanh(distance / 40.0);
  const double ahead = speed / length;
  const MAP_POINT_TYPE along = map_direction(ahead, ahead * bend);
  const MAP_POINT_TYPE across = map_direction(-outwards * ahead * bend, outwards * ahead);
  return {station + (in_pond ? stations : 0), static_cast<float>(place - station),
          static_cast<float>(along.x),        static_cast<float>(along.y),
          static_cast<float>(across.x),       static_cast<float>(across.y)};
}

void FloodSolution::evaluate(const FLOOD_PROFILE_TYPE& profile, RESULT_MAPS_TYPE& maps) const {
  maps.level.resize(point_count());
  maps.depth.resize(point_count());
  maps.velocity.resize(2 * point_count());
  maps.wet.resize(cell_count());
  evaluate_points(profile, maps);
  evaluate_cells(maps);
}

void FloodSolution::evaluate_points(const FLOOD_PROFILE_TYPE& profile,
                                    RESULT_MAPS_TYPE& maps) const {
  for (std::size_t i = 0; i < bed_.size(); ++i) {
    const POINT_CONSTANTS_TYPE& c = constants_[i];
    const float level = std::max(between(profile.surface, c.station, c.weight), bed_[i]);
    const float depth = level - bed_[i];
    const float rate = between(profile.rate, c.station, c.weight);
    const float factor = std::cbrt(depth * depth);
    maps.level[i] = level;
    maps.depth[i] = depth;
    // Adding zero turns the negative zeros of dry points into plain ones.
    maps.velocity[2 * i] = factor * (c.along_x + rate * c.across_x) + 0.0f;
    maps.velocity[2 * i + 1] = factor * (c.along_y + rate * c.across_y) + 0.0f;
  }
}

void FloodSolution::evaluate_cells(RESULT_MAPS_TYPE& maps) const {
  const std::vector<float>& depth = maps.depth;
  for (std::size_t i = 0; i < cell_count(); ++i) {
    const MESH_CELL_TYPE& cell = mesh_.cells[i];
    float mean = 0.0f;
    if (at_cells_) {
      mean = depth[i];
    } else {
      mean = depth[cell.nodes[0]] + depth[cell.nodes[1]] + depth[cell.nodes[2]];
      mean = cell.kind == 3 ? mean / 3.0f : (mean + depth[cell.nodes[3]]) / 4.0f;
    }
    maps.wet[i] = mean > wet_depth ? 1 : 0;
  }
}

void track_maxima(const RESULT_MAPS_TYPE& maps, RESULT_MAPS_TYPE& maxima) {
  if (maxima.level.empty()) {
    maxima = maps;
    return;
  }
  keep_greater(maps.level, maxima.level);
  keep_greater(maps.depth, maxima.depth);
  keep_greater(maps.wet, maxima.wet);
  keep_velocities(maps.velocity, maxima.velocity, std::greater<>());
}

void track_minima(const RESULT_MAPS_TYPE& maps, RESULT_MAPS_TYPE& minima) {
  if (minima.level.empty()) {
    minima = maps;
    return;
  }
  keep_smaller(maps.level, minima.level);
  keep_smaller(maps.depth, minima.depth);
  keep_smaller(maps.wet, minima.wet);
  keep_velocities(maps.velocity, minima.velocity, std::less<>());
}

float magnitude(float x, float y) {
  return std::sqrt(x * x + y * y);
}

}  // namespace quillet::example
