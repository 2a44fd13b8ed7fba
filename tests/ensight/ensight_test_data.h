// Datasets in memory and small meshes for the export.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "mesh/mesh_test_files.h"
#include "results/result_dataset.h"

namespace quillet::test {

struct MemoryOutput {
  double time = 0;
  std::vector<std::int8_t> status;  // empty: the dataset has none
  std::vector<float> x;
  std::vector<float> y = {};  // empty: a scalar
};

class MemoryDataset : public ResultDataset {
 public:
  MemoryDataset(std::string own_name, DatasetKind own_kind, std::vector<MemoryOutput> all)
      : label(std::move(own_name)), folder(own_kind), outputs(std::move(all)) {
    for (const MemoryOutput& output : outputs) hours.push_back(output.time);
    if (!outputs.empty()) vectors = !outputs.front().y.empty();
  }

  const std::string& name() const override { return label; }
  const std::string& description() const override { return text.empty() ? label : text; }
  DatasetKind kind() const override { return folder; }
  bool is_vector() const override { return vectors; }
  const std::vector<double>& times() const override { return hours; }

  void read(std::size_t output, RES_TYPE& record) override {
    if (before_read) before_read(output);
    const MemoryOutput& from = outputs.at(output);
    std::copy(from.status.begin(), from.status.end(), record.cell.status.begin());
    std::copy(from.x.begin(), from.x.end(), record.nd.x.begin());
    std::copy(from.y.begin(), from.y.end(), record.nd.y.begin());
    record.is_vector = !from.y.empty();
    record.time = static_cast<float>(from.time);
  }

  std::function<void(std::size_t)> before_read;
  std::string text;  // the description; empty: the name

 private:
  std::string label;
  DatasetKind folder;
  std::vector<MemoryOutput> outputs;
  std::vector<double> hours;
  bool vectors = false;
};

// Two triangles over a rectangle and, to the right of it, a quadrilateral:
//
//     4 --- 3 --- 6
//     | 1 / |  3  |
//     |  /2 |     |
//     1 --- 2 --- 5
inline std::string standard_mesh() {
  return header_line(83) +
         "E3T 1 1 3 4 1 0 0 0 \"  \"\n"
         "E3T 2 1 2 3 1 0 0 0 \"  \"\n"
         "E4Q 3 2 5 6 3 1 0 0 0\n"
         "ND 1 1000.0 2000.0 5.0 0 0 0 0\n"
         "ND 2 1010.0 2000.0 4.0 0 0 0 0\n"
         "ND 3 1010.0 2010.0 4.5 0 0 0 0\n"
         "ND 4 1000.0 2010.0 6.0 0 0 0 0\n"
         "ND 5 1030.5 2000.0 -0.5 0 0 0 0\n"
         "ND 6 1030.5 2010.0 0.0 0 0 0 0\n";
}

// A finite-volume mesh of one quadrilateral and, before and after it, a triangle.
inline std::string fv_mesh() {
  return "MESH2D\n"
         "E3T 1 1 2 3 1\n"
         "E4Q 2 2 4 5 3 1\n"
         "E3T 3 4 6 5 1\n"
         "ND 1 0 0 1\nND 2 1 0 1\nND 3 0 1 1\nND 4 2 0 1\nND 5 2 1 1\nND 6 3 0 1\n";
}

// A 9-node quadrilateral (corners 1, 3, 5, 7, centre 9) with a triangle beside it.
inline std::string quad9_mesh() {
  return header_line(83) +
         "E9Q 1 1 2 3 4 5 6 7 8 9 1 0 0 0\n"
         "E3T 2 3 10 5 1 0 0 0 \"  \"\n"
         "ND 1 0 0 1 0 0 0 0\nND 2 1 0 1 0 0 0 0\nND 3 2 0 1 0 0 0 0\nND 4 2 1 1 0 0 0 0\n"
         "ND 5 2 2 1 0 0 0 0\nND 6 1 2 1 0 0 0 0\nND 7 0 2 1 0 0 0 0\nND 8 0 1 1 0 0 0 0\n"
         "ND 9 1 1 1 0 0 0 0\nND 10 3 1 1 0 0 0 0\n";
}

}  // namespace quillet::test
