// An XMDF file as h5py shows it, which shares no code with the program.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>

#include <filesystem>
#include <string>

#include "build_paths.h"

namespace quillet::testing {

inline std::string TEXT_OF_COMMAND(const std::string& command) {
  std::string text;
  FILE* const output = ::popen((command + " 2>&1").c_str(), "r");
  for (int c = ::fgetc(output); c != EOF; c = ::fgetc(output)) text += static_cast<char>(c);
  EXPECT_EQ(::pclose(output), 0) << text;
  return text;
}

// What show_xmdf.py prints.
inline std::string XMDF_TEXT(const std::filesystem::path& name) {
  return TEXT_OF_COMMAND("/usr/bin/python3 " + tests_folder + "/program/show_xmdf.py '" +
                         name.string() + "'");
}

}  // namespace quillet::testing
