// A .2dm file: the whole mesh, and the elevations alone, which must agree where both succeed.
#include <cmath>
#include <cstdlib>

#include "fuzz/fuzz_input.h"
#include "mesh/load_mesh.h"
#include "mesh/node_kinds.h"
#include "mesh/read_2dm_elevations.h"
#include "support/input_unit.h"
#include "support/run_end.h"

namespace quillet {
namespace {

bool load(const std::string& name, MESH_TYPE& mesh) try {
  LOAD_MESH(name, std::nullopt, std::nullopt, mesh);
  return true;
} catch (const RunEnd&) {
  return false;
}

// With the counts known beforehand the file is read in another way.
bool load_with_counts(const std::string& name, const MESH_TYPE& known, MESH_TYPE& mesh) try {
  LOAD_MESH(name, known.node_count, known.element_count, mesh);
  return true;
} catch (const RunEnd&) {
  return false;
}

bool same(const MESH_TYPE& a, const MESH_TYPE& b) {
  for (std::size_t i = 0; i < a.nodes.size(); ++i) {
    if (a.nodes[i].x != b.nodes[i].x || a.nodes[i].y != b.nodes[i].y ||
        a.nodes[i].z != b.nodes[i].z || a.nodes[i].kind != b.nodes[i].kind) {
      return false;
    }
  }
  for (std::size_t i = 0; i < a.elements.size(); ++i) {
    if (a.elements[i].kind != b.elements[i].kind || a.elements[i].nodes != b.elements[i].nodes) {
      return false;
    }
  }
  return a.nodes.size() == b.nodes.size() && a.elements.size() == b.elements.size();
}

void check(const std::string& name) {
  MESH_TYPE mesh, again;
  if (!load(name, mesh)) return;
  if (!load_with_counts(name, mesh, again) || !same(mesh, again)) std::abort();
}

void read_elevations(const std::string& name) try {
  LargeArray<float> elevations;
  CornerArrays corners;
  READ_2DM_ELEVATIONS(InputUnit(name), elevations, 16, corners, 16);
} catch (const RunEnd&) {
}

}  // namespace
}  // namespace quillet

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static quillet::fuzz::MemoryFile file;
  file.set(data, size);
  quillet::check(file.name());
  quillet::read_elevations(file.name());
  return 0;
}
