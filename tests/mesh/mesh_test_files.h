// Small text files for the tests, and the console of what reads them.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "captured_console.h"
#include "mesh/load_mesh.h"

namespace quillet::test {

// Removes the files at the end of the process.
struct TextFiles {
  ~TextFiles() {
    for (const std::string& path : paths) std::remove(path.c_str());
  }
  std::set<std::string> paths;
};

// Writes the text to a file of this name and process in the folder for temporary files.
inline std::string text_file(const std::string& name, std::string_view text) {
  static TextFiles files;
  const std::string path = ::testing::TempDir() + std::to_string(::getpid()) + name;
  std::ofstream(path, std::ios::binary) << text;
  files.paths.insert(path);
  return path;
}

// What loading a mesh of this text prints.
inline std::string console_of_loading(const std::string& text,
                                      std::optional<std::int32_t> nodes = std::nullopt,
                                      std::optional<std::int32_t> cells = std::nullopt) {
  const std::string path = text_file("mesh.2dm", text);
  return console_of([&] {
    MESH_TYPE mesh;
    LOAD_MESH(path, nodes, cells, mesh);
  });
}

constexpr std::string_view close_lines = "\nPress Enter to Close\n";
constexpr std::string_view other_mesh_help =
    "   -2dm names the mesh of the results; one that a .sup file names goes before it.\n";

// A header line of exactly this length: seven geo-referencing values and, at its end, the z offset.
inline std::string header_line(std::size_t length) {
  const std::string values = "MESH2D    1.5 2.5 3.5 4.5 5.5 6.5 7.5";
  const std::string offset = "100.25";
  return values + std::string(length - values.size() - offset.size(), ' ') + offset + '\n';
}

}  // namespace quillet::test
