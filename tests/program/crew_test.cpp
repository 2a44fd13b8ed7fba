// Runs that are large enough for helper threads: with any number of threads they write and say the
// same, also where they fail.
#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <map>
#include <random>

#include "case_names.h"
#include "xmdf_builder.h"

namespace quillet::testing {
namespace {

constexpr int columns = 61;
constexpr int rows = 60;
constexpr int nodes = columns * rows;

std::mt19937& random_bits() {
  static std::mt19937 bits(20261122);
  return bits;
}

bool flip() {
  return random_bits()() % 2 == 0;
}

// A grid whose squares are quadrilaterals or pairs of triangles, by chance.
struct RandomMesh {
  RandomMesh() {
    for (int node = 1; node <= nodes; ++node) {
      const int column = (node - 1) % columns;
      const int row = (node - 1) / columns;
      text += "ND " + std::to_string(node) + " " + std::to_string(column * 10) + " " +
              std::to_string(row * 10) + " " + std::to_string(column + row) + "\n";
      if (column + 1 < columns && row + 1 < rows) add_square(node);
    }
  }

  std::string text = "MESH2D\n";
  int cells = 0;

 private:
  void add_square(int node) {
    const int above = node + columns;
    if (flip()) {
      add("E4Q", {node, node + 1, above + 1, above});
    } else {
      add("E3T", {node, node + 1, above});
      add("E3T", {node + 1, above + 1, above});
    }
  }
  void add(const std::string& card, const std::vector<int>& corners) {
    text += card + " " + std::to_string(++cells);
    for (const int corner : corners) text += " " + std::to_string(corner);
    text += " 1\n";
  }
};

// Any statuses, and any bits for values: numbers of every size, and what is no number.
std::vector<DatTime> random_times(int count, const DatShape& shape) {
  std::vector<DatTime> times;
  for (int i = 0; i < count; ++i) {
    DatTime time{static_cast<float>(i), {}, {}};
    for (int cell = 0; cell < shape.cells; ++cell) {
      time.statuses.push_back(static_cast<int>(random_bits()() % 3) - 1);
    }
    for (int value = 0; value < shape.nodes * (shape.is_vector ? 2 : 1); ++value) {
      time.values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random_bits()())));
    }
    times.push_back(time);
  }
  return times;
}

struct CrewRun {
  std::string name;
  std::string arguments;
  std::string obstacle;  // a folder in the place of this output
};

class Crew : public ::testing::TestWithParam<CrewRun> {
 protected:
  using Files = std::map<std::string, std::string>;

  static void make_inputs(const Workspace& folder) {
    random_bits().seed(20261122);
    const RandomMesh mesh;
    const DatShape scalars{nodes, mesh.cells};
    const DatShape vectors{nodes, mesh.cells, true};
    folder.write("m.2dm", mesh.text);
    folder.write("s.dat", DAT_FILE(scalars, "s", random_times(190, scalars)));
    folder.write("v.dat", DAT_FILE(vectors, "v", random_times(80, vectors)));
  }

  // What the run says, and the bytes of every file that it leaves.
  static std::pair<std::string, Files> run_with(int threads) {
    const Workspace folder;
    make_inputs(folder);
    if (!GetParam().obstacle.empty()) {
      std::filesystem::create_directory(folder.path(GetParam().obstacle));
    }
    const RunResult run =
        RUN(folder, WORDS("-b --threads=" + std::to_string(threads) + " " + GetParam().arguments));
    EXPECT_TRUE(run.ended_well()) << run.output;
    Files files;
    for (const std::string& name : folder.names()) {
      if (name != GetParam().obstacle) files[name] = folder.read(name);
    }
    return {run.output, files};
  }
};

TEST_P(Crew, OfAnySizeDoesTheSame) {
  const auto [console, files] = run_with(1);
  EXPECT_EQ(console.find("ERROR") == std::string::npos, GetParam().obstacle.empty()) << console;
  for (const int threads : {2, 3, 8}) {
    const auto [other_console, other_files] = run_with(threads);
    EXPECT_EQ(other_console, console) << threads;
    ASSERT_EQ(other_files.size(), files.size()) << threads;
    for (const auto& [name, bytes] : files) {
      EXPECT_TRUE(other_files.contains(name) && other_files.at(name) == bytes)
          << name << " with " << threads << " threads";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, Crew,
    ::testing::Values(
        CrewRun{"Ensight", "-ensight -2dm m.2dm s.dat v.dat -out e", ""},
        CrewRun{"EnsightThatFails", "-ensight -2dm m.2dm s.dat v.dat -out e", "e_s_s.0057"},
        CrewRun{"EnsightWithoutLog", "-ensight -2dm m.2dm s.dat v.dat -out e", "e_binary.geo.log"}),
    NameOfCase());

}  // namespace
}  // namespace quillet::testing
