// Where points of the map lie in the mesh, found once; then a value at each costs a few
// multiplications.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "mesh/mesh_values.h"
#include "mesh/part_interpolation.h"
#include "mesh/part_mesh.h"

namespace quillet {

// A part of the mesh that a point lies in, and how the values at its corners make the one there.
struct PlaceInPart {
  MeshPart part;
  std::array<double, 4> weights{};  // of the corners; their sum is 1
  std::int32_t nearest = 0;         // index of the nearest node
};

// Several where the point lies on an edge or a node, by ascending id of the element; none outside
// the mesh.
using PointPlaces = std::vector<PlaceInPart>;

// The places of every point. Memory does not depend on the mesh.
std::vector<PointPlaces> LOCATE_POINTS(const PartMesh& mesh, std::span<const MapPoint> points);

// The value at a point: in the first of its places that is wet. Nothing on dry land, outside the
// mesh, and where it is not a number.
std::optional<float> VALUE_AT(const PointPlaces& places, const MeshValues& values);

}  // namespace quillet
