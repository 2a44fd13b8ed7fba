#include "mesh/part_mesh.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

#include "support/console.h"

namespace quillet {
namespace {

using Corners = std::array<std::int32_t, 4>;

constexpr std::array<std::array<std::size_t, 4>, 4> quarters_of_quad9{
    {{0, 4, 8, 7}, {4, 1, 5, 8}, {8, 5, 2, 6}, {7, 8, 6, 3}}};

class PartMaker {
 public:
  explicit PartMaker(PartMesh& target) : mesh(target) {}

  void add(std::int32_t element_index, const std::array<std::int32_t, 9>& nodes) {
    element = element_index;
    const auto node = [&](std::size_t slot) { return nodes[slot] - 1; };
    const int count = NODE_COUNT_OF(nodes);
    if (count == 3) add_triangle(node(0), node(1), node(2));
    if (count == 4) add_quad({node(0), node(1), node(2), node(3)});
    if (count != 9) return;
    for (const auto& [a, b, c, d] : quarters_of_quad9) {
      add_quad({node(a), node(b), node(c), node(d)});
    }
  }

 private:
  // Twice the area, positive where the corners run counter-clockwise.
  double area(std::int32_t a, std::int32_t b, std::int32_t c) const {
    return (mesh.x[b] - mesh.x[a]) * (mesh.y[c] - mesh.y[a]) -
           (mesh.x[c] - mesh.x[a]) * (mesh.y[b] - mesh.y[a]);
  }

  void add_triangle(std::int32_t a, std::int32_t b, std::int32_t c) {
    const double size = area(a, b, c);
    if (size < 0) std::swap(b, c);
    if (size != 0) mesh.parts.push_back({{a, b, c, -1}, element});
  }

  void add_quad(Corners corners) {
    if (area(corners[0], corners[1], corners[2]) + area(corners[0], corners[2], corners[3]) < 0) {
      std::swap(corners[1], corners[3]);
    }
    const std::size_t apex = re_entrant_corner(corners);
    if (apex == corners.size()) {
      mesh.parts.push_back({corners, element});
      return;
    }
    std::rotate(corners.begin(), corners.begin() + static_cast<std::ptrdiff_t>(apex),
                corners.end());
    add_triangle(corners[0], corners[1], corners[2]);
    add_triangle(corners[0], corners[2], corners[3]);
  }

  // The corner from which a quadrilateral must be cut in two: one that points inwards, or any where
  // corners fall together. Their number for a convex quadrilateral.
  std::size_t re_entrant_corner(const Corners& corners) const {
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const double turn = area(corners[(i + 3) % 4], corners[i], corners[(i + 1) % 4]);
      if (turn < 0 || corners[i] == corners[(i + 1) % 4]) return i;
    }
    const bool has_area =
        area(corners[0], corners[1], corners[2]) + area(corners[0], corners[2], corners[3]) > 0;
    return has_area ? corners.size() : 0;
  }

  PartMesh& mesh;
  std::int32_t element = 0;
};

void take_elements(const MESH_GEOMETRY_TYPE& source, PartMesh& mesh) {
  const std::size_t count = source.corners.size();
  mesh.parts.reserve(count + 3 * static_cast<std::size_t>(source.quad9_count));
  PartMaker maker(mesh);
  for (std::size_t i = 0; i < count; ++i) {
    maker.add(static_cast<std::int32_t>(i), NODES_OF(source, i));
  }
}

}  // namespace

double PartMesh::edge_tolerance() const {
  constexpr double digits_of_coordinates = 1e-12;
  return digits_of_coordinates * std::max({std::fabs(x_minimum), std::fabs(x_maximum),
                                           std::fabs(y_minimum), std::fabs(y_maximum)});
}

PartMesh MAKE_PART_MESH(MESH_GEOMETRY_TYPE mesh) try {
  PartMesh result;
  result.element_count = mesh.element_count;
  result.x_minimum = mesh.x_minimum;
  result.x_maximum = mesh.x_maximum;
  result.y_minimum = mesh.y_minimum;
  result.y_maximum = mesh.y_maximum;
  result.x = std::move(mesh.x);
  result.y = std::move(mesh.y);
  take_elements(mesh, result);
  return result;
} catch (const std::bad_alloc&) {
  FAIL_ALLOCATION();
}

}  // namespace quillet
