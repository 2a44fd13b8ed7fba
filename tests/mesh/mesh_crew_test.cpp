// Meshes large enough to be read by helpers: lines of every form, with and without a fault among
// them. Any number of threads makes the same tables and tells the same.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <random>
#include <tuple>

#include "in_crew_of.h"
#include "mesh/load_mesh.h"
#include "mesh/read_2dm_elevations.h"
#include "mesh_test_files.h"

namespace quillet {
namespace {

constexpr std::int32_t node_count = 80000;
constexpr std::int32_t cell_count = 100000;

struct Fault {
  std::string name;
  std::vector<std::string> lines;  // the first of them stands before the others
  std::size_t header_length = 90;
  bool is_error = true;
};

class RandomLines {
 public:
  explicit RandomLines(unsigned seed) : random(seed) {}

  std::string node(std::int32_t id) {
    std::string line = fmt::format("ND {}", id);
    for (int i = 0; i < 3; ++i) line += separator() + real();
    for (const char* value : {"0", "1.5", "0", "-1e3"}) line += separator() + value;
    return line + end();
  }

  std::string element(std::int32_t id, bool has_quad9) {
    const int kinds[] = {3, 4, 9};
    const int kind = kinds[number(has_quad9 ? 3 : 2)];
    std::string line = fmt::format("E{}{} {}", kind, kind == 3 ? 'T' : 'Q', id);
    for (int i = 0; i < kind; ++i) line += fmt::format("{}{}", separator(), 1 + number(node_count));
    for (int i = 0; i < 4; ++i) line += fmt::format("{}{}", separator(), number(100));
    return line + separator() + one_of({"AB", "c", "'D'", "\"EF\"", "LONG"}) + end();
  }

  std::mt19937 random;

 private:
  int number(int most) { return static_cast<int>(random() % static_cast<unsigned>(most)); }

  std::string one_of(const std::vector<std::string>& texts) {
    return texts[random() % texts.size()];
  }

  std::string separator() {
    return number(8) > 0 ? " " : one_of({"\t", ",", " , ", "     ", " \t "});
  }
  std::string end() { return one_of({"\n", "\n", "\n", "\r\n", " rest\n", "\nNS 1 -2\n"}); }

  std::string real() {
    const double value = (number(2000000000) - 1000000000) / 1e4;
    switch (number(6)) {
      case 0:
        return fmt::format("{:.9E}", value);
      case 1:
        return fmt::format("{:.17e}", value);
      case 2:
        return fmt::format("{:.14f}", value);
      default:
        return fmt::format("{:.4f}", value);
    }
  }
};

std::string random_mesh(bool in_order, const Fault& fault) {
  RandomLines lines(11);
  std::vector<std::string> cards;
  for (std::int32_t id = 1; id <= node_count; ++id) cards.push_back(lines.node(id));
  const bool has_quad9 = fault.header_length > 82;
  for (std::int32_t id = 1; id <= cell_count; ++id) cards.push_back(lines.element(id, has_quad9));
  if (!in_order) std::shuffle(cards.begin(), cards.end(), lines.random);
  std::size_t place = cards.size() / 2;
  for (const std::string& line : fault.lines) {
    cards.insert(cards.begin() + static_cast<std::ptrdiff_t>(place), line + "\n");
    place += cards.size() / 5;
  }
  std::string text = test::header_line(fault.header_length) + "MESHPART a\n";
  for (const std::string& card : cards) text += card;
  return text + "MESHPART b";
}

// What readers make of a file.
struct Readings {
  std::string console;
  MESH_TYPE whole;
  MESH_GEOMETRY_TYPE geometry;
  LargeArray<float> elevations;
  CornerArrays corners;
};

Readings read_all(const std::string& path) {
  Readings result;
  const auto add = [&](const auto& read) { result.console += test::console_of(read); };
  add([&] { LOAD_MESH(path, node_count, cell_count, result.whole); });
  add([&] { LOAD_MESH(path, std::nullopt, std::nullopt, result.geometry); });
  add([&] {
    READ_2DM_ELEVATIONS(InputUnit(path), result.elevations, node_count, result.corners, cell_count);
  });
  return result;
}

void expect_same(const Readings& a, const Readings& b) {
  const auto place = [](const MESH_NODE_TYPE& n) {
    return std::tuple(n.x, n.y, n.z, n.further, n.kind, n.elevation_flag);
  };
  const auto values = [](const MESH_ELEMENT_TYPE& e) {
    return std::tuple(e.kind, e.nodes, e.material, e.further, e.byte, e.code);
  };
  EXPECT_EQ(a.console, b.console);
  EXPECT_TRUE(std::ranges::equal(a.whole.nodes, b.whole.nodes, {}, place, place));
  EXPECT_TRUE(std::ranges::equal(a.whole.elements, b.whole.elements, {}, values, values));
  EXPECT_TRUE(std::ranges::equal(a.geometry.x, b.geometry.x));
  EXPECT_TRUE(std::ranges::equal(a.geometry.y, b.geometry.y));
  EXPECT_TRUE(std::ranges::equal(a.geometry.z, b.geometry.z));
  EXPECT_TRUE(std::ranges::equal(a.geometry.corners, b.geometry.corners));
  EXPECT_TRUE(std::ranges::equal(a.geometry.inner_nodes, b.geometry.inner_nodes));
  EXPECT_EQ(a.geometry.mesh_parts.size(), b.geometry.mesh_parts.size());
  const auto bits = [](float elevation) { return std::bit_cast<std::uint32_t>(elevation); };
  EXPECT_TRUE(std::ranges::equal(a.elevations, b.elevations, {}, bits, bits));
  EXPECT_EQ(a.corners, b.corners);
}

struct CrewCase {
  bool in_order = false;
  Fault fault;
};
class MeshesOfCrews : public ::testing::TestWithParam<CrewCase> {};

TEST_P(MeshesOfCrews, AreReadAsByOneThread) {
  const auto& [in_order, fault] = GetParam();
  const std::string text = random_mesh(in_order, fault);
  ASSERT_GT(text.size(), std::size_t{8} << 20);
  const std::string path = test::text_file("crew.2dm", text);
  const Readings alone = read_all(path);
  EXPECT_EQ(alone.console.find("ERROR") != std::string::npos, fault.is_error);
  if (!fault.is_error) {
    EXPECT_EQ(alone.geometry.mesh_parts.size(), 2U);
  }
  for (const int threads : {2, 3, 8}) {
    test::in_crew_of(threads, [&] { expect_same(read_all(path), alone); });
  }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MeshesOfCrews,
    ::testing::Values(
        CrewCase{true, {"InOrder", {}, 90, false}}, CrewCase{false, {"Shuffled", {}, 90, false}},
        CrewCase{true,
                 {"LongLines", {std::string(300000, 'x'), std::string(3 << 20, 'x')}, 90, false}},
        CrewCase{true, {"Unreadable", {"ND 7 0 x", "E3T 5 1 2 3 y", "ND 8 0 z"}}},
        CrewCase{false, {"Repeated", {"E3T 5 1 2 3 4 5 6 7 A", "ND 7 0 0 0 0 0 0 0"}}},
        CrewCase{false, {"Outside", {"E4Q 9999999 1 2 3 4 5 6 7 8", "ND 0 0 0 0"}}},
        CrewCase{true, {"Misplaced", {"E9Q 1 1 1 1 1 1 1 1 1 1 1", "E9Q 2"}, 82}}),
    [](const auto& test) { return test.param.fault.name; });

}  // namespace
}  // namespace quillet
