// Small text files for the tests, and the console of what reads them.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "mesh/load_mesh.h"

namespace quillet::test {

// Removes the files at the end of the process that wrote them.
struct TextFiles {
  ~TextFiles() {
    if (::getpid() != process) return;
    for (const std::string& path : paths) std::remove(path.c_str());
  }
  pid_t process = ::getpid();
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

inline std::string text_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// What `run` prints, in a process of its own: it may end the run. Fails when that process does not
// end by itself with exit status 0. Standard input is empty.
template <typename Run>
std::string console_of(Run run) {
  const std::string path = text_file("console.txt", "");
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) {
    if (std::freopen(path.c_str(), "wb", stdout) == nullptr) std::_Exit(1);
    if (std::freopen("/dev/null", "rb", stdin) == nullptr) std::_Exit(1);
    run();
    std::fflush(stdout);
    std::_Exit(0);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
  return text_of(path);
}

// What `run` prints, in this process: it must return. A run that ends instead would pass for a test
// program that ended well, so the exit status is made to tell.
template <typename Run>
std::string console_of_returning(Run run) {
  static bool has_returned = true;
  static const int registered = std::atexit([] {
    if (!has_returned) std::_Exit(EXIT_FAILURE);
  });
  EXPECT_EQ(registered, 0);
  has_returned = false;
  ::testing::internal::CaptureStdout();
  run();
  has_returned = true;
  return ::testing::internal::GetCapturedStdout();
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

// A header line of exactly this length: seven geo-referencing values and, at its end, the z offset.
inline std::string header_line(std::size_t length) {
  const std::string values = "MESH2D    1.5 2.5 3.5 4.5 5.5 6.5 7.5";
  const std::string offset = "100.25";
  return values + std::string(length - values.size() - offset.size(), ' ') + offset + '\n';
}

}  // namespace quillet::test
