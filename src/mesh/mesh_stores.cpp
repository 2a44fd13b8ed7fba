#include "mesh/mesh_stores.h"

#include "mesh/node_kinds.h"

namespace quillet {

RecordStore::RecordStore(Mesh& target)
    : mesh(target), initial_kind(target.fv_mesh ? fv_node : no_element_node) {}

// Kinds can be marked at once while elements come in the order of their ids, after their nodes.
void RecordStore::put_element(std::size_t index, const MESH_ELEMENT_TYPE& element) {
  mesh.elements[index] = element;
  if (mesh.fv_mesh || !kinds_are_marked) return;
  const auto is_there = [&](std::int32_t id) {
    const auto node = static_cast<std::size_t>(id) - 1;
    return node < nodes() && has_node(node);
  };
  kinds_are_marked =
      index >= elements_end &&
      std::all_of(element.nodes.begin(), element.nodes.begin() + element.kind, is_there);
  elements_end = index + 1;
  if (kinds_are_marked) MARK_NODES_OF(element, mesh.nodes);
}

void RecordStore::turn_to_quad9(std::size_t index) {
  mesh.elements[index].kind = 9;
  kinds_are_marked = false;
}

void RecordStore::finish(std::int32_t unread) {
  if (!kinds_are_marked || unread > 0) SET_NODE_KINDS(mesh);
}

void GeometryStore::reserve_nodes(std::size_t room) {
  mesh.x.reserve(room);
  mesh.y.reserve(room);
  mesh.z.reserve(room);
  node_is_there.reserve(room);
}

void GeometryStore::grow_nodes(std::size_t count) {
  mesh.x.grow(count);
  mesh.y.grow(count);
  mesh.z.grow(count);
  node_is_there.grow(count);
}

// Room for all elements, as those of such a mesh are mostly all of this kind; what is not used is
// not touched.
void GeometryStore::put_inner_nodes(std::size_t index, const std::array<std::int32_t, 9>& nodes) {
  mesh.inner_nodes.reserve(elements_room());
  mesh.inner_nodes.grow(index + 1);
  std::copy(nodes.begin() + 4, nodes.end(), mesh.inner_nodes[index].begin());
}

void GeometryStore::finish(std::int32_t unread) const {
  for (std::int32_t i = 0; i < unread && !mesh.fv_mesh; ++i) REPORT_ELEMENT_KIND();
}

}  // namespace quillet
