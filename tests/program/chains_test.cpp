// Chains of two and three runs, as everyday work has them, against a calculation on the originals.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

using Times = std::vector<DatTime>;
using Values = std::vector<float>;

constexpr int columns = 9;
constexpr int rows = 7;
constexpr DatShape shape{columns * rows, 2 * (columns - 1) * (rows - 1)};
constexpr float no_level = -99;

// Two triangles for each square of nodes.
std::vector<std::array<int, 3>> corners_of_cells() {
  std::vector<std::array<int, 3>> cells;
  for (int y = 0; y + 1 < rows; ++y) {
    for (int x = 0; x + 1 < columns; ++x) {
      const int a = y * columns + x, b = a + 1, c = a + columns, d = c + 1;
      cells.push_back({a, b, d});
      cells.push_back({a, d, c});
    }
  }
  return cells;
}
const auto cells = corners_of_cells();

// A flood that comes and goes over uneven ground; the last output time holds what an engine stores.
struct Model {
  Values bed;
  Times depth, level;

  explicit Model(unsigned seed) {
    std::mt19937 random(seed);
    const auto number = [&](int from, int to) {
      return static_cast<float>(from +
                                static_cast<int>(random() % static_cast<unsigned>(to - from)));
    };
    for (int i = 0; i < shape.nodes; ++i) bed.push_back(number(8, 40) / 4);
    Values most_depth(bed.size(), 0), most_level(bed.size(), no_level);
    std::vector<int> ever(static_cast<std::size_t>(shape.cells), 0);
    for (const float hours : {0.0F, 0.5F, 1.0F, 1.5F, 2.0F}) {
      Values d, h;
      for (const float z : bed) {
        const float surface = number(8, 40) / 4;
        d.push_back(std::max(surface - z, 0.0F));
        h.push_back(surface > z ? surface : no_level);
      }
      std::vector<int> status;
      for (const auto& cell : cells) {
        status.push_back(
            std::all_of(cell.begin(), cell.end(), [&](int i) { return d[at(i)] > 0; }));
      }
      for (std::size_t i = 0; i < bed.size(); ++i) {
        most_depth[i] = std::max(most_depth[i], d[i]);
        most_level[i] = std::max(most_level[i], h[i]);
      }
      for (std::size_t i = 0; i < ever.size(); ++i) ever[i] = std::max(ever[i], status[i]);
      depth.push_back({hours, status, d});
      level.push_back({hours, status, h});
    }
    depth.push_back({99999, ever, most_depth});
    level.push_back({99999, ever, most_level});
  }

  static std::size_t at(int i) { return static_cast<std::size_t>(i); }

  std::string mesh() const {
    std::string text = "MESH2D\n";
    int id = 0;
    for (const auto& [a, b, c] : cells) {
      text += "E3T " + std::to_string(++id) + " " + std::to_string(a + 1) + " " +
              std::to_string(b + 1) + " " + std::to_string(c + 1) + " 1\n";
    }
    id = 0;
    for (const float z : bed)
      text += "ND " + std::to_string(++id) + " 0 0 " + std::to_string(z) + "\n";
    return text;
  }
};

// The output times of a scalar file that the program wrote.
Times read_dat(const Workspace& folder, const std::string& name) {
  const std::string bytes = folder.read(name);
  constexpr std::size_t header = 92;
  const std::size_t step = 9 + static_cast<std::size_t>(shape.cells + 4 * shape.nodes);
  Times times;
  for (std::size_t from = header; from + step <= bytes.size(); from += step) {
    const char* place = bytes.data() + from + 5;
    DatTime time;
    std::memcpy(&time.time, place, 4);
    place += 4;
    for (int i = 0; i < shape.cells; ++i) time.statuses.push_back(place[i]);
    time.values.resize(static_cast<std::size_t>(shape.nodes));
    std::memcpy(time.values.data(), place + shape.cells, 4 * time.values.size());
    times.push_back(time);
  }
  return times;
}

bool same(const DatTime& a, const DatTime& b) {
  return a.time == b.time && a.statuses == b.statuses && a.values == b.values;
}

// The maximum of the given output times; of levels only at nodes of cells that were active.
DatTime maximum(const Times& times, std::size_t from, std::size_t to, bool of_levels) {
  DatTime most{111111, std::vector<int>(times[0].statuses.size(), 0),
               Values(times[0].values.size())};
  for (std::size_t t = from; t < to; ++t) {
    for (std::size_t i = 0; i < most.values.size(); ++i) {
      most.values[i] = std::max(most.values[i], times[t].values[i]);
    }
    for (std::size_t i = 0; i < most.statuses.size(); ++i) {
      most.statuses[i] = std::max(most.statuses[i], times[t].statuses[i]);
    }
  }
  if (!of_levels) return most;
  std::vector<bool> counts(most.values.size(), false);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    for (const int node : cells[i]) {
      if (most.statuses[i] == 1) counts[Model::at(node)] = true;
    }
  }
  for (std::size_t i = 0; i < counts.size(); ++i) {
    if (!counts[i]) most.values[i] = 0;
  }
  return most;
}

struct Compared {
  const DatTime& data;
  const Values& levels;
  const Values& bed;

  bool wet(std::size_t i) const { return bed[i] + 0.001F < levels[i]; }
};

DatTime difference(const Compared& a, const Compared& b) {
  DatTime result{a.data.time, {}, {}};
  for (std::size_t i = 0; i < a.data.statuses.size(); ++i) {
    result.statuses.push_back(a.data.statuses[i] == 1 || b.data.statuses[i] == 1);
  }
  for (std::size_t i = 0; i < a.bed.size(); ++i) {
    const float both = b.wet(i) ? a.data.values[i] - b.data.values[i] : 99.0F;
    result.values.push_back(a.wet(i) ? both : b.wet(i) ? -99.0F : 0.0F);
  }
  return result;
}

class Chains : public ::testing::TestWithParam<unsigned> {
 protected:
  Chains() : run1(2 * GetParam()), run2(2 * GetParam() + 1) {
    write("run1", run1);
    write("run2", run2);
  }

  void write(const std::string& name, const Model& model) const {
    folder.write(name + ".2dm", model.mesh());
    folder.write(name + "_d.dat", DAT_FILE(shape, "depth", model.depth));
    folder.write(name + "_h.dat", DAT_FILE(shape, "level", model.level));
    const auto stored = [](DatTime time) { return Times{{0, time.statuses, time.values}}; };
    const Times depths(model.depth.begin(), model.depth.end() - 1);
    const Times levels(model.level.begin(), model.level.end() - 1);
    MAKE_XMDF(folder, name + ".xmdf",
              {{name + "/Maximums/Depth", shape, stored(model.depth.back())},
               {name + "/Maximums/Water Level", shape, stored(model.level.back())},
               {name + "/Temporal/Depth", shape, depths},
               {name + "/Temporal/Water Level", shape, levels}});
  }

  std::string runs(const std::vector<std::string>& lines) const {
    std::string output;
    for (const std::string& line : lines) {
      const RunResult result = RUN(folder, WORDS("-b " + line));
      EXPECT_TRUE(result.ended_well());
      EXPECT_EQ(result.output.find("ERROR"), std::string::npos) << line << result.output;
      output += result.output;
    }
    return output;
  }

  void expect_differences(const Times& found, const Times& expected) const {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      EXPECT_TRUE(same(found[i], expected[i])) << "output time " << found[i].time;
    }
  }

  Model run1, run2;
  Workspace folder;
};

TEST_P(Chains, DifferenceOfCroppedDepths) {
  const std::string console =
      runs({"-rangeA1 -rangeB1.5 run1_d.dat", "-rangeA1 -rangeB2 run2_d.dat",
            "-dif run2_d(range).dat run1_d(range).dat -out new.dat"});
  Times expected;
  for (const std::size_t t : {2U, 3U}) {
    expected.push_back(difference({run2.depth[t], run2.level[t].values, run2.bed},
                                  {run1.depth[t], run1.level[t].values, run1.bed}));
  }
  expect_differences(read_dat(folder, "new.dat"), expected);
  for (const std::string line :
       {"WARNING - Water levels from \"run2_h.dat\"\n",
        "WARNING - Water levels from \"run1_h.dat\"\n", "WARNING - Compared up to time 1.5.\n"}) {
    EXPECT_NE(console.find(line), std::string::npos) << line;
  }
}

TEST_P(Chains, DifferenceOfMaximaOfCroppedLevels) {
  runs({"-rangeA0.5 -rangeB2 run1_h.dat", "-rangeA0.5 -rangeB2 run2_h.dat",
        "-max run1_h(range).dat", "-max run2_h(range).dat",
        "-dif run2_h(range)(maxmax).dat run1_h(range)(maxmax).dat -out new.dat"});
  const DatTime most1 = maximum(run1.level, 1, 4, true);
  const DatTime most2 = maximum(run2.level, 1, 4, true);
  EXPECT_TRUE(same(read_dat(folder, "run1_h(range)(maxmax).dat")[0], most1));
  expect_differences(read_dat(folder, "new.dat"), {difference({most2, most2.values, run2.bed},
                                                              {most1, most1.values, run1.bed})});
}

// Where a cell was wet in both runs, the maxima of -max and those that the engine stored agree.
TEST_P(Chains, DifferenceOfMaximaIsThatOfTheStoredMaxima) {
  runs({"-max run1_h.dat", "-max run2_h.dat", "-max run1_d.dat", "-max run2_d.dat"});
  for (const std::string type : {"h", "d"}) {
    const std::string of_maxima = "run2_" + type + "(maxmax).dat run1_" + type + "(maxmax).dat";
    runs({"-dif " + of_maxima + " -out maxima.dat",
          "-dif -t99999 run2_" + type + ".dat run1_" + type + ".dat -out stored.dat"});
    const Times maxima = read_dat(folder, "maxima.dat");
    const Times stored = read_dat(folder, "stored.dat");
    ASSERT_EQ(maxima.size(), 1U);
    ASSERT_EQ(stored.size(), 1U);
    EXPECT_EQ(maxima[0].time, 111111);
    EXPECT_EQ(maxima[0].statuses, stored[0].statuses);
    int compared = 0;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (run1.depth.back().statuses[i] != 1 || run2.depth.back().statuses[i] != 1) continue;
      for (const int node : cells[i]) {
        EXPECT_EQ(maxima[0].values[Model::at(node)], stored[0].values[Model::at(node)])
            << type << node;
        ++compared;
      }
    }
    EXPECT_GT(compared, 20);
  }
}

TEST_P(Chains, KeptTrimmedAndCompared) {
  runs({"-k1.5 run1_d.dat", "-k1.5 run2_d.dat", "-trim2 run1_d(k1.5).dat",
        "-trim2 run2_d(k1.5).dat", "-k1.5 run1_h.dat", "-k1.5 run2_h.dat",
        "-dif run2_d(k1.5)(trim2).dat run1_d(k1.5)(trim2).dat -out new.dat"});
  DatTime trimmed1 = run1.depth[3], trimmed2 = run2.depth[3];
  for (DatTime* const step : {&trimmed1, &trimmed2}) {
    for (float& value : step->values) value = std::min(value, 2.0F);
  }
  expect_differences(read_dat(folder, "new.dat"),
                     {difference({trimmed2, run2.level[3].values, run2.bed},
                                 {trimmed1, run1.level[3].values, run1.bed})});
}

TEST_P(Chains, OfXmdfFiles) {
  runs({"-rangeA0.5 -rangeB1.5 -typeh run1.xmdf", "-rangeA0.5 -rangeB1.5 -typeh run2.xmdf",
        "-max -typeh run1(range).xmdf",
        "-dif -typeh run2(range).xmdf run1(range).xmdf -out new.xmdf"});
  const Times most = READ_XMDF(folder, "run1(range)(maxmax).xmdf", "MaxMax/Maximums/Max Value");
  ASSERT_EQ(most.size(), 1U);
  EXPECT_TRUE(same(most[0], maximum(run1.level, 1, 4, true)));
  Times expected;
  for (const std::size_t t : {1U, 2U, 3U}) {
    expected.push_back(difference({run2.level[t], run2.level[t].values, run2.bed},
                                  {run1.level[t], run1.level[t].values, run1.bed}));
  }
  expect_differences(
      READ_XMDF(folder, "new.xmdf", "Difference/Temporal/diff_run2(range) - run1(range)"),
      expected);
}

// Velocities would do as well: what the levels of the whole run say holds for every quantity.
TEST_P(Chains, JoinedAfterARestartAndCompared) {
  runs({"-rangeA0 -rangeB1 run1_d.dat -out first_d.dat",
        "-rangeA1 -rangeB2 run1_d.dat -out then_d.dat",
        "-con first_d.dat then_d.dat -out run1_d(con).dat",
        "-dif run1_d(con).dat run2_d.dat -out new.dat"});
  Times expected;
  for (std::size_t t = 0; t < 5; ++t) {
    expected.push_back(difference({run1.depth[t], run1.level[t].values, run1.bed},
                                  {run2.depth[t], run2.level[t].values, run2.bed}));
  }
  expect_differences(read_dat(folder, "new.dat"), expected);
}

INSTANTIATE_TEST_SUITE_P(Floods, Chains, ::testing::Range(1U, 4U));

// Everything that goes through a file to its end warns of what stands behind it.
TEST(FilesThatGoOn, AreReportedOnce) {
  const DatTime step{1, {1}, {1, 2}}, next{2, {1}, {3, 4}};
  const std::string whole = DAT_FILE({2, 1}, "data", {step, next});
  const std::string other_card =
      whole.substr(0, whole.size() - 4) + DatBuilder().integer(7).build();
  const std::string line = "WARNING - Data after the last output time is not read: \"a_d.dat\"";
  for (const auto& [bytes, warnings] :
       std::vector<std::pair<std::string, int>>{{whole, 0},
                                                {whole + 'x', 1},
                                                {other_card, 1},
                                                {other_card + whole, 1},
                                                {whole.substr(0, whole.size() - 2), 0},
                                                {whole.substr(0, whole.size() - 4), 0}}) {
    for (const std::string operation : {"-times", "-r5", "-trim1", "-max", "-min -ignore_mm",
                                        "-dur1", "-conv", "-rangeA0 -rangeB1"}) {
      const Workspace folder;
      folder.write("a_d.dat", bytes);
      const RunResult run = RUN(folder, WORDS("-b a_d.dat " + operation));
      EXPECT_EQ(run.count_lines_with(line), warnings) << operation << run.output;
    }
  }
}

}  // namespace
}  // namespace quillet::testing
