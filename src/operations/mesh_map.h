// What the operations share that look values up anywhere on the map: the mesh taken apart, where
// the values stand in it, and which output times are taken.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "mesh/mesh_values.h"
#include "mesh/part_mesh.h"
#include "results/result_shape.h"
#include "results/results_record.h"
#include "results/run_inputs.h"

namespace quillet {

struct MeshMapJob {
  RunInputs& inputs;  // the first is used
  RES_TYPE& step;     // sized for it; the components of vectors apart

  ResultShape shape{};
  bool is_finite_volume = false;
  bool wet_dry_test = true;
  bool holds_angles = false;  // values are directions

  std::optional<float> time{};  // hours; only this output time
  float tolerance = 0;          // hours
};

class MeshMap {
 public:
  // Reads the mesh of the first input and finds the output times: those of the simulation, or the
  // one asked for; in a file without ordinary ones its stored maxima and minima. Ends the run when
  // the mesh does not fit the results or has no elements.
  explicit MeshMap(const MeshMapJob& job);

  PartMesh& mesh() { return part_mesh; }
  bool per_element() const { return values_per_element; }
  const std::vector<float>& times() const { return taken_times; }

  // Reads the output times one by one. What is passed over is said.
  void read_each(const std::function<void(RES_TYPE& step)>& use);

  // How values of a record that was read stand: one of its arrays.
  MeshValues values_of(const RES_TYPE& step, const LargeArray<float>& values) const;

 private:
  void load_mesh();
  void find_times();
  bool take_stored_alone();
  bool is_taken(float time) const;

  MeshMapJob job;
  PartMesh part_mesh;
  bool values_per_element = false;
  bool takes_special_times = false;
  bool seeks_times = false;  // each by itself, not on a walk
  std::vector<float> taken_times;
};

}  // namespace quillet
