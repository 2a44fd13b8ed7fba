// An XMDF file as h5py shows it, which shares no code with the program.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>

#include <filesystem>
#include <string>

namespace quillet::testing {

// What show_xmdf.py prints.
inline std::string XMDF_TEXT(const std::filesystem::path& name) {
  const std::string command =
      "/usr/bin/python3 " QUILLET_TESTS "/program/show_xmdf.py '" + name.string() + "' 2>&1";
  std::string text;
  FILE* const view = ::popen(command.c_str(), "r");
  for (int c = ::fgetc(view); c != EOF; c = ::fgetc(view)) text += static_cast<char>(c);
  EXPECT_EQ(::pclose(view), 0) << text;
  return text;
}

}  // namespace quillet::testing
