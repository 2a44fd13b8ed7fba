// Runs on the example model, compared with calculations of their own on the bytes of its files.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>

#include "dat_builder.h"
#include "program_runner.h"

namespace quillet::testing {
namespace {

using Values = std::vector<float>;
using Statuses = std::vector<int>;

struct Dataset {
  DatShape shape;
  std::vector<DatTime> times;

  const DatTime& at(float hours) const {
    for (const DatTime& step : times) {
      if (step.time == hours) return step;
    }
    throw std::out_of_range("no such time");
  }
};

template <typename Value>
Value value_at(const std::string& bytes, std::size_t at) {
  Value value;
  std::memcpy(&value, &bytes.at(at), sizeof value);
  return value;
}

// Files with the usual header, and statuses at every output time.
Dataset dataset(const std::string& bytes) {
  Dataset data{{value_at<std::int32_t>(bytes, 36), value_at<std::int32_t>(bytes, 44),
                value_at<std::int32_t>(bytes, 28) == 140},
               {}};
  std::size_t at = 92;
  for (; value_at<std::int32_t>(bytes, at) == 200;) {
    DatTime step{value_at<float>(bytes, at + 5), {}, {}};
    at += 9;
    for (int i = 0; i < data.shape.cells; ++i) step.statuses.push_back(bytes.at(at++));
    step.values.resize(data.shape.nodes * (data.shape.is_vector ? 2 : 1));
    for (float& value : step.values) {
      value = value_at<float>(bytes, at);
      at += 4;
    }
    data.times.push_back(step);
  }
  return data;
}

struct Mesh {
  Values bed;
  std::vector<std::vector<int>> corners;  // per cell, node numbers from 0
};

Mesh mesh(const std::string& text) {
  Mesh result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string card;
    int id = 0;
    double x = 0, y = 0;
    float z = 0;
    words >> card >> id;
    if (card == "ND" && words >> x >> y >> z) result.bed.push_back(z);
    if (card != "E3T" && card != "E4Q") continue;
    std::vector<int>& nodes = result.corners.emplace_back(card == "E3T" ? 3 : 4);
    for (int& node : nodes) words >> node, --node;
  }
  return result;
}

float magnitude(float x, float y) {
  if (std::fabs(x) <= 1e-6F && std::fabs(y) <= 1e-6F) return 0;
  return std::sqrt(x * x + y * y);
}

class ExampleModel : public ::testing::Test {
 protected:
  ExampleModel() {
    const std::string command = QUILLET_EXAMPLE_MODEL " --nodes 1500 " + folder.path().string();
    EXPECT_EQ(std::system((command + " > /dev/null").c_str()), 0);
  }

  Dataset data(const std::string& name) const { return dataset(folder.read(name)); }
  Mesh mesh_of(const std::string& name) const { return mesh(folder.read(name)); }

  std::string result(const std::string& arguments, const std::string& output) const {
    const RunResult run = RUN(folder, WORDS("-b " + arguments));
    EXPECT_TRUE(run.ended_well());
    EXPECT_EQ(run.count_lines_with("ERROR"), 0) << run.output;
    return folder.read(output);
  }

  // The difference of a scalar, told apart by levels; counts the kinds of nodes.
  std::string difference(const std::string& type, Values& kinds) const {
    const Dataset first = data("run1_" + type + ".dat"), second = data("run2_" + type + ".dat");
    const Dataset level1 = data("run1_h.dat"), level2 = data("run2_h.dat");
    const Values bed1 = mesh_of("run1.2dm").bed, bed2 = mesh_of("run2.2dm").bed;
    Dataset expected = first;
    for (std::size_t t = 0; t < first.times.size(); ++t) {
      DatTime& step = expected.times[t];
      for (int i = 0; i < first.shape.cells; ++i) {
        step.statuses[i] = step.statuses[i] == 1 || second.times[t].statuses[i] == 1;
      }
      for (int i = 0; i < first.shape.nodes; ++i) {
        const bool wet1 = bed1[i] + 0.001F < level1.times[t].values[i];
        const bool wet2 = bed2[i] + 0.001F < level2.times[t].values[i];
        const float both = step.values[i] - second.times[t].values[i];
        step.values[i] = wet1 ? (wet2 ? both : 99) : (wet2 ? -99 : 0);
        ++kinds[2 * wet1 + wet2];
      }
    }
    return DAT_FILE(first.shape, "diff_run1_" + type + " - run2_" + type, expected.times);
  }

  Workspace folder;
};

TEST_F(ExampleModel, DifferencesOfLevelsAndDepths) {
  EXPECT_NE(mesh_of("run1.2dm").bed, mesh_of("run2.2dm").bed);
  Values kinds(4);
  EXPECT_TRUE(result("-dif run1_h.dat run2_h.dat", "run1_h - run2_h.dat") ==
              difference("h", kinds));
  EXPECT_GT(*std::min_element(kinds.begin(), kinds.end()), 0);  // every row of the truth table
  EXPECT_TRUE(result("-dif run1_d.dat run2_d.dat", "run1_d - run2_d.dat") ==
              difference("d", kinds));
}

TEST_F(ExampleModel, DifferencesOfSpeedsAtOneTime) {
  const Dataset first = data("run1_V.dat");
  const DatTime a = first.at(2), b = data("run2_V.dat").at(2);
  DatTime expected{2, {}, {}};
  for (std::size_t i = 0; i < a.statuses.size(); ++i) {
    expected.statuses.push_back(a.statuses[i] == 1 && b.statuses[i] == 1);
  }
  for (std::size_t i = 0; i < a.values.size(); i += 2) {
    expected.values.push_back(magnitude(a.values[i], a.values[i + 1]) -
                              magnitude(b.values[i], b.values[i + 1]));
  }
  EXPECT_TRUE(result("-dif -nowetdry -t2 run1_V.dat run2_V.dat", "run1_V - run2_V.dat") ==
              DAT_FILE({first.shape.nodes, first.shape.cells}, "diff_run1_V - run2_V", {expected}));
}

TEST_F(ExampleModel, TrimmedVelocities) {
  Dataset flow = data("run1_V.dat");
  int shortened = 0;
  for (DatTime& step : flow.times) {
    for (std::size_t i = 0; i < step.values.size(); i += 2) {
      const float length = magnitude(step.values[i], step.values[i + 1]);
      if (length < 1.5F) continue;
      ++shortened;
      step.values[i] = step.values[i] * 1.5F / length;
      step.values[i + 1] = step.values[i + 1] * 1.5F / length;
    }
  }
  EXPECT_GT(shortened, 100);
  EXPECT_TRUE(result("-trim1.5 run1_V.dat", "run1_V(trim1.5).dat") ==
              DAT_FILE(flow.shape, "trim1", flow.times));
}

TEST_F(ExampleModel, DirectionsOfTheFastestFlow) {
  const DatTime fastest = data("run1_V.dat").at(99999);
  const Dataset angles = dataset(result("-va -t99999 run1_V.dat", "run1_V_va.dat"));
  ASSERT_EQ(angles.times.size(), 1U);
  EXPECT_FALSE(angles.shape.is_vector);
  const DatTime& got = angles.at(99999);
  EXPECT_EQ(got.statuses, fastest.statuses);
  for (int i = 0; i < angles.shape.nodes; ++i) {
    const double angle =
        std::atan2(double{fastest.values[2 * i]}, double{fastest.values[2 * i + 1]});
    const auto expected = static_cast<float>(angle * 57.29577951308232);
    const auto bits = [](float value) { return std::bit_cast<std::int32_t>(value); };
    ASSERT_LE(std::abs(bits(got.values[i]) - bits(expected)), 1) << expected;
  }
}

// Folds one output time of each input as -max and -min do. With a mesh only the nodes of active
// cells take part.
struct Extremes {
  DatShape shape{};
  bool is_minimum = false;
  const Mesh* level_mesh = nullptr;
  Values overall{}, sources{};
  Statuses statuses{};
  float number = 0;

  float size(const Values& values, int i) const {
    return shape.is_vector ? magnitude(values[2 * i], values[2 * i + 1]) : values[i];
  }

  void fold_node(const Values& values, int i) {
    const float candidate = size(values, i);
    const float held = size(overall, i);
    if (is_minimum ? !(candidate < held) : !(candidate > held)) return;
    const int width = shape.is_vector ? 2 : 1;
    for (int k = 0; k < width; ++k) overall[width * i + k] = values[width * i + k];
    sources[i] = number;
  }

  void fold(const Dataset& input, float hours) {
    const DatTime& step = input.at(hours);
    if (number++ == 0) {
      shape = input.shape;
      overall.assign(step.values.size(), 0);
      sources.assign(shape.nodes, 0);
      statuses.assign(shape.cells, is_minimum ? 1 : 0);
    }
    for (int i = 0; i < shape.cells; ++i) {
      const int status = std::abs(step.statuses[i]);
      statuses[i] = is_minimum ? std::min(statuses[i], status) : std::max(statuses[i], status);
      if (level_mesh == nullptr || status != 1) continue;
      for (const int node : level_mesh->corners[i]) fold_node(step.values, node);
    }
    for (int i = 0; level_mesh == nullptr && i < shape.nodes; ++i) fold_node(step.values, i);
  }

  // Of a single input all times are those of the stored extremes.
  std::string file() const {
    DatBuilder bytes = DAT_HEADER(shape, is_minimum ? "Min Value" : "Max Value");
    ADD_TIME(bytes, {111111, statuses, overall});
    ADD_TIME(bytes, {222222, statuses, sources});
    if (number == 1) ADD_TIME(bytes, {333333, statuses, Values(shape.nodes, 99999)});
    return bytes.integer(210).build();
  }
};

TEST_F(ExampleModel, ExtremesOfLevels) {
  const Mesh mesh1 = mesh_of("run1.2dm");
  Extremes maxima{.level_mesh = &mesh1};
  maxima.fold(data("run1_h.dat"), 99999);
  EXPECT_TRUE(result("-max run1_h.dat", "run1_h(maxmax).dat") == maxima.file());
  maxima.fold(data("run2_h.dat"), 99999);
  for (const float source : {0.0F, 1.0F, 2.0F}) {
    EXPECT_GT(std::count(maxima.sources.begin(), maxima.sources.end(), source), 0) << source;
  }
  EXPECT_TRUE(result("-max run1_h.dat run2_h.dat", "run1_h(maxmax).dat") == maxima.file());
  EXPECT_TRUE(result("-max levels.sup", "levels(maxmax).dat") == maxima.file());

  Extremes minima{.is_minimum = true, .level_mesh = &mesh1};
  minima.fold(data("run2_h.dat"), 99999);
  EXPECT_TRUE(result("-min -2dm run1.2dm run2_h.dat", "run2_h(minmin).dat") == minima.file());
}

TEST_F(ExampleModel, ExtremesOfVelocitiesAndOfDepthsAtOneTime) {
  Extremes fastest, deepest;
  for (const std::string run : {"run1", "run2"}) {
    fastest.fold(data(run + "_V.dat"), 99999);
    deepest.fold(data(run + "_d.dat"), 2);
  }
  EXPECT_TRUE(result("-max run1_V.dat run2_V.dat", "run1_V(maxmax).dat") == fastest.file());
  EXPECT_TRUE(result("-max -t2 run1_d.dat run2_d.dat", "run1_d(maxmax).dat") == deepest.file());
}

}  // namespace
}  // namespace quillet::testing
