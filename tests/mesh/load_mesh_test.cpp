// The two ways of loading a mesh, in one pass and in two: same tables, same console.
#include "mesh/load_mesh.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <tuple>

#include "mesh/read_2dm.h"
#include "mesh/scan_2dm.h"
#include "mesh_test_files.h"

namespace quillet {
namespace {

using Count = std::optional<std::int32_t>;
constexpr float z_offset = 100.25F;  // in the header line

struct Cards {
  std::vector<std::string> nodes, elements;
};

// A grid of so many squares a side: 9-node quadrilaterals, or 4-node ones among pairs of triangles.
Cards grid_cards(int side, bool nine_nodes, std::mt19937& random) {
  const auto number = [&](unsigned most) { return static_cast<int>(random() % most); };
  const int step = nine_nodes ? 2 : 1;
  const int w = side * step + 1;
  Cards cards;
  for (int id = 1; id <= w * w; ++id) {
    cards.nodes.push_back(fmt::format("ND {} {:.4f} {:.4f} {:.3f} {} {}.5 0.25 {}", id,
                                      number(1 << 30) / 1e4, number(1 << 30) / -1e4,
                                      number(9999999) / 1e3, number(3), number(9), number(9)));
  }
  const auto add = [&](const char* name, const std::vector<int>& nodes, const char* code) {
    const auto id = cards.elements.size() + 1;
    cards.elements.push_back(fmt::format("{} {} {} {} {} {} {}{}", name, id, fmt::join(nodes, " "),
                                         number(9), number(99), id, number(256) - 128, code));
  };
  for (int square = 0; square < side * side; ++square) {
    const int n = square / side * step * w + square % side * step + 1;
    if (nine_nodes) {
      add("E9Q",
          {n, n + 1, n + 2, n + 2 + w, n + 2 + 2 * w, n + 1 + 2 * w, n + 2 * w, n + w, n + 1 + w},
          "");
    } else if (number(2) == 0) {
      add("E4Q", {n, n + 1, n + 1 + w, n + w}, "");
    } else {
      add("E3T", {n, n + 1, n + w}, " AB");
      add("E3T", {n + 1, n + 1 + w, n + w}, " xy");
    }
  }
  return cards;
}

// Read word by word, and the kinds of the nodes set when everything is known.
MESH_TYPE naive_mesh(const std::string& text, const Cards& cards) {
  const std::vector<int> slots[10] = {{}, {}, {}, {0, 2, 1}, {0, 3, 2, 1},
                                      {}, {}, {}, {},        {0, 4, 1, 5, 2, 6, 3, 7, 8}};
  MESH_TYPE mesh;
  mesh.nodes.grow(cards.nodes.size());
  mesh.elements.grow(cards.elements.size());
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream values(line);
    std::string card;
    std::size_t id = 0;
    int byte = 0;
    values >> card >> id;
    if (card == "ND") {
      MESH_NODE_TYPE& node = mesh.nodes[id - 1];
      values >> node.x >> node.y >> node.z >> byte;
      for (float& value : node.further) values >> value;
      node.elevation_flag = static_cast<std::int8_t>(byte);
      if (byte == 1) node.z -= z_offset;
      mesh.x_minimum = std::min(mesh.x_minimum, node.x);
      mesh.x_maximum = std::max(mesh.x_maximum, node.x);
      mesh.y_minimum = std::min(mesh.y_minimum, node.y);
      mesh.y_maximum = std::max(mesh.y_maximum, node.y);
    } else if (card[0] == 'E') {
      MESH_ELEMENT_TYPE& element = mesh.elements[id - 1];
      element.kind = card[1] - '0';
      for (const int slot : slots[element.kind]) values >> element.nodes[slot];
      values >> element.material >> element.further[0] >> element.further[1] >> byte;
      element.byte = static_cast<std::int8_t>(byte);
      values >> element.code[0] >> element.code[1];
    }
  }
  const char* const quad_kinds[] = {"H ", "H ", "H ", "H ", "UV", "UV", "UV", "UV", "C "};
  for (const MESH_ELEMENT_TYPE& element : mesh.elements) {
    for (int slot = 0; slot < element.kind; ++slot) {
      const char* const kind = element.kind == 3 ? "T " : quad_kinds[slot];
      mesh.nodes[element.nodes[slot] - 1].kind = {kind[0], kind[1]};
    }
  }
  return mesh;
}

bool is_read_at_once(const std::string& path, Count nodes, Count cells) {
  const InputUnit unit(path);
  MESH_TYPE mesh;
  bool is_read = false;
  test::console_of_returning([&] {
    SCAN_2DM_HEADER(unit, mesh);
    is_read = READ_2DM_AT_ONCE(unit, {nodes, cells}, mesh);
  });
  return is_read;
}

// 9-node quadrilaterals, elements first, shuffled nodes, shuffled elements.
using Order = std::tuple<bool, bool, bool, bool>;
class LoadedMeshes : public ::testing::TestWithParam<Order> {};

TEST_P(LoadedMeshes, hold_what_the_text_states_whichever_way_they_are_read) {
  const auto [of_nine_nodes, elements_first, shuffled_nodes, shuffled_elements] = GetParam();
  const bool nine_nodes = of_nine_nodes;  // a structured binding is not for lambdas in Clang 14
  std::mt19937 random(17);
  Cards cards = grid_cards(nine_nodes ? 60 : 90, nine_nodes, random);
  if (shuffled_nodes) std::shuffle(cards.nodes.begin(), cards.nodes.end(), random);
  if (shuffled_elements) std::shuffle(cards.elements.begin(), cards.elements.end(), random);
  const std::string nodes = fmt::format("{}\n", fmt::join(cards.nodes, "\n"));
  const std::string elements = fmt::format("{}\nNS 1 -2\n", fmt::join(cards.elements, "\n"));
  const std::string text = test::header_line(90) + "MESHPART \"all\"\n" +
                           (elements_first ? elements + nodes : nodes + elements);
  const MESH_TYPE naive = naive_mesh(text, cards);
  const auto node_count = static_cast<std::int32_t>(cards.nodes.size());
  const auto cell_count = static_cast<std::int32_t>(cards.elements.size());
  const auto extents = [](const MESH_TYPE& m) {
    return std::tuple(m.x_minimum, m.x_maximum, m.y_minimum, m.y_maximum);
  };
  const auto node_values = [](const MESH_NODE_TYPE& n) {
    return std::tuple(n.x, n.y, n.z, n.further, n.kind, n.elevation_flag);
  };
  const auto element_values = [](const MESH_ELEMENT_TYPE& e) {
    return std::tuple(e.kind, e.nodes, e.material, e.further, e.byte, e.code, e.flag);
  };

  const std::string path = test::text_file("mesh.2dm", text);
  const auto expect_geometry = [&](Count cells) {
    MESH_GEOMETRY_TYPE mesh;
    std::string console =
        test::console_of_returning([&] { LOAD_MESH(path, node_count, cells, mesh); });
    EXPECT_TRUE(std::ranges::equal(mesh.x, naive.nodes, {}, {}, &MESH_NODE_TYPE::x));
    EXPECT_TRUE(std::ranges::equal(mesh.y, naive.nodes, {}, {}, &MESH_NODE_TYPE::y));
    EXPECT_TRUE(std::ranges::equal(mesh.z, naive.nodes, {}, {}, &MESH_NODE_TYPE::z));
    EXPECT_EQ(mesh.corners.size(), naive.elements.size());
    for (std::size_t i = 0; i < mesh.corners.size(); ++i) {
      EXPECT_EQ(NODES_OF(mesh, i), naive.elements[i].nodes) << i;
    }
    EXPECT_EQ(std::tuple(mesh.x_minimum, mesh.x_maximum, mesh.y_minimum, mesh.y_maximum),
              extents(naive));
    return console;
  };
  const auto expect_naive = [&](Count cells) {
    MESH_TYPE mesh;
    std::string console =
        test::console_of_returning([&] { LOAD_MESH(path, node_count, cells, mesh); });
    EXPECT_TRUE(std::ranges::equal(mesh.nodes, naive.nodes, {}, node_values, node_values));
    EXPECT_TRUE(
        std::ranges::equal(mesh.elements, naive.elements, {}, element_values, element_values));
    EXPECT_EQ(extents(mesh), extents(naive));
    EXPECT_EQ(mesh.triangle_count + mesh.quad4_count + mesh.quad9_count, cell_count);
    EXPECT_EQ(mesh.quad9_count, nine_nodes ? cell_count : 0);
    EXPECT_EQ(mesh.high_resolution, nine_nodes);
    EXPECT_EQ(mesh.mesh_parts.size(), 1U);
    return console;
  };
  const std::string console = expect_naive(cell_count);
  EXPECT_EQ(console, expect_naive(std::nullopt));
  EXPECT_EQ(console, expect_geometry(cell_count));
  EXPECT_EQ(console, expect_geometry(std::nullopt));
  EXPECT_EQ(console.find("Element:   10000\n") == std::string::npos, nine_nodes);
  EXPECT_TRUE(is_read_at_once(path, node_count, cell_count));
  EXPECT_TRUE(is_read_at_once(path, std::nullopt, std::nullopt));
}

INSTANTIATE_TEST_SUITE_P(Orders, LoadedMeshes,
                         ::testing::Combine(::testing::Bool(), ::testing::Bool(), ::testing::Bool(),
                                            ::testing::Bool()));

// A form changes how a line is written, not what it states.
struct LineForm {
  std::string name;
  std::string (*write)(const std::string& line);
};
class WrittenForms : public ::testing::TestWithParam<LineForm> {};

// Between the values; the card's name keeps its blank.
std::string with_separator(const std::string& line, const std::string& separator) {
  const std::size_t values = line.find(' ') + 1;
  std::string result = line.substr(0, values);
  for (const char c : line.substr(values)) result += c == ' ' ? separator : std::string(1, c);
  return result;
}

// The coordinates and the elevation of a node in another style.
std::string with_reals(const std::string& line, fmt::format_string<double> style) {
  if (!line.starts_with("ND")) return line;
  std::istringstream words(line);
  std::string result;
  int place = 0;
  for (std::string word; words >> word; ++place) {
    const bool is_point = place >= 2 && place <= 4;
    result += (is_point ? fmt::format(style, std::stod(word)) : word) + ' ';
  }
  return result;
}

std::string with_code(const std::string& line, std::string (*write)(const std::string&)) {
  const std::size_t start = line.rfind(' ') + 1;
  return line.starts_with("E3T") ? line.substr(0, start) + write(line.substr(start)) : line;
}

TEST_P(WrittenForms, are_read_at_once_and_state_the_same) {
  std::mt19937 random(23);
  const Cards cards = grid_cards(40, false, random);
  std::string plain = test::header_line(90);
  std::string written = plain;
  for (const auto* lines : {&cards.nodes, &cards.elements}) {
    for (const std::string& line : *lines) {
      plain += line + "\n";
      written += GetParam().write(line) + "\n";
    }
  }
  const MESH_TYPE naive = naive_mesh(plain, cards);
  MESH_TYPE mesh;
  const std::string path = test::text_file("form.2dm", written);
  test::console_of_returning([&] { LOAD_MESH(path, std::nullopt, std::nullopt, mesh); });
  const auto node_values = [](const MESH_NODE_TYPE& n) {
    return std::tuple(n.x, n.y, n.z, n.further, n.kind, n.elevation_flag);
  };
  const auto corners = [](const MESH_ELEMENT_TYPE& e) {
    return std::tuple(e.kind, e.nodes, e.material, e.further, e.byte, e.code[0]);
  };
  EXPECT_TRUE(std::ranges::equal(mesh.nodes, naive.nodes, {}, node_values, node_values));
  EXPECT_TRUE(std::ranges::equal(mesh.elements, naive.elements, {}, corners, corners));
  EXPECT_TRUE(is_read_at_once(path, std::nullopt, std::nullopt));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, WrittenForms,
    ::testing::Values(
        LineForm{"tabs", [](const std::string& line) { return with_separator(line, "\t"); }},
        LineForm{"commas", [](const std::string& line) { return with_separator(line, ","); }},
        LineForm{"columns", [](const std::string& line) { return with_separator(line, "     "); }},
        LineForm{"mixed", [](const std::string& line) { return with_separator(line, " ,\t "); }},
        LineForm{"cr_lf", [](const std::string& line) { return line + "\r"; }},
        LineForm{"exponents", [](const std::string& line) { return with_reals(line, "{:.12E}"); }},
        LineForm{"long_exponents",
                 [](const std::string& line) { return with_reals(line, "{:.18e}"); }},
        LineForm{"long_decimals",
                 [](const std::string& line) { return with_reals(line, "{:.14f}"); }},
        LineForm{"fortran_exponents",
                 [](const std::string& line) {
                   std::string result = with_reals(line, "{:.9E}");
                   std::replace(result.begin() + 1, result.end(), 'E',
                                line.starts_with("ND") ? 'D' : 'E');
                   return result;
                 }},
        LineForm{"one_letter_codes",
                 [](const std::string& line) {
                   return with_code(line,
                                    [](const std::string& code) { return code.substr(0, 1); });
                 }},
        LineForm{"quoted_codes",
                 [](const std::string& line) {
                   return with_code(line, [](const std::string& code) { return "'" + code + "'"; });
                 }},
        LineForm{"long_codes",
                 [](const std::string& line) {
                   return with_code(line, [](const std::string& code) { return code + "W"; });
                 }}),
    [](const auto& form) { return form.param.name; });

// Five nodes and two elements are expected; the last lines decide.
struct LastLines {
  std::string lines;
  std::array<int, 4> counts;  // nodes, triangles, 4-node and 9-node quadrilaterals
  std::string rest;           // of the console, after the counts; without the file's name
  std::size_t header_length = 90;
};
std::ostream& operator<<(std::ostream& out, const LastLines& last) {
  return out << ::testing::PrintToString(last.lines);
}
class LastLineCases : public ::testing::TestWithParam<LastLines> {};

TEST_P(LastLineCases, are_told_as_if_the_cards_had_been_counted_first) {
  const LastLines& last = GetParam();
  const std::string text = test::header_line(last.header_length) +
                           "ND 1 0 0 1 0 0 0 1\nND 2 1 0 2 0 0 0 1\nND 3 1 1 3 0 0 0 1\n"
                           "ND 4 0 1 4 0 0 0 1\nE4Q 1 1 2 3 4 7 1 2 3\n" +
                           last.lines;
  const auto [nodes, triangles, quads4, quads9] = last.counts;
  const std::string expected = fmt::format(
      "Reading geo-referencing information...\n{}...scanning .2dm file to determine size\n"
      "Finished Scanning .2dm file\nNumber of nodes: {}\nNumber of triangles: {}\n"
      "Number of 4-node quads: {}\nNumber of 9-node quads: {}\nTotal number of elements: {}\n{}",
      last.header_length < 83 ? "Detected pre 2005-09-AF .2dm format.\n" : "", nodes, triangles,
      quads4, quads9, triangles + quads4 + quads9, last.rest);
  std::string console = test::console_of_loading(text, 5, 2);
  if (const auto name = console.find('"'); name != std::string::npos) {
    console.erase(name, console.find('"', name + 1) + 1 - name);
  }
  EXPECT_EQ(console, expected);
}

const std::string close(test::close_lines);
const std::string start = "Rewinding .2dm file...\n   Done.\n...reading .2dm file\nElement:\n";
const std::string end = "Finished Reading .2dm file\n";
const std::string bad_line = "ERROR - Reading .2dm file from following line in .2dm file\n";
const std::string both_quads =
    "Detected High Resolution Output\n"
    "WARNING - Both 4 and 9 node quadrilateral elements detected.  This may cause issues\n"
    "Press Enter to Continue\n";
// With what the file has instead.
std::string other_mesh(const std::string& expected, const std::string& found) {
  return "ERROR - Number of " + expected + "\n   Found in : " + found + ".\n" +
         std::string(test::other_mesh_help) + close;
}
const std::string five_nodes = "nodes does not match results file. Expecting number of nodes: 5";
const std::string two_cells = "cells does not match results file. Expecting number of cells: 2";
const std::string node4_again =
    "\nERROR - Reading file : expected every node id once, found node 4 again\n";
const std::string misplaced_quad9 =
    "ERROR - Unexpected 9 point quad in FV or pre 2005 mesh.\n" + end +
    "ERROR - Should not be here, cell is not e3t, e4q or e9q.  Contact support@quillet.example\n";

const std::string node5 = "ND 5 2 0 5 0 0 0 1\n";
const std::string cell2 = "E4Q 2 1 2 3 4 7 1 2 3\n";
const std::string quad9 = "E9Q 2 1 2 3 4 5 4 3 2 1 7 1 2 3\n";
const std::string too_short = "E3T 2 1 2 3 7 1\n";
const std::string node6 = "ND 6 0 0 0 0 0 0 0\n";

INSTANTIATE_TEST_SUITE_P(
    AfterOrdinaryOnes, LastLineCases,
    ::testing::Values(
        LastLines{node5 + "E3T 2 2 5 3 7 1 2 3 AB", {5, 1, 1, 0}, start + end},
        LastLines{node5 + quad9, {5, 0, 1, 1}, both_quads + start + end},
        LastLines{node5 + "E3T 2,2 5 3 7 1 2 3 AB", {5, 1, 1, 0}, start + end},
        LastLines{node5 + too_short, {5, 1, 1, 0}, start + bad_line + too_short + close},
        LastLines{cell2 + node6, {5, 0, 2, 0}, start + bad_line + node6 + close},
        LastLines{cell2 + "ND 4 0 1 4 0 0 0 1", {5, 0, 2, 0}, start + node4_again + close},
        LastLines{cell2, {4, 0, 2, 0}, other_mesh(five_nodes, "nodes 4, cells 2")},
        LastLines{node5, {5, 0, 1, 0}, other_mesh(two_cells, "nodes 5, cells 1")},
        LastLines{node5 + cell2 + "E3T 3", {5, 1, 2, 0}, other_mesh(two_cells, "nodes 5, cells 3")},
        LastLines{node5 + quad9, {5, 0, 1, 1}, both_quads + start + misplaced_quad9, 82}));

}  // namespace
}  // namespace quillet
