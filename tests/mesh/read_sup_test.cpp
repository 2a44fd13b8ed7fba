#include "mesh/read_sup.h"

#include <gtest/gtest.h>

#include <string>

#include "mesh_test_files.h"

namespace quillet {
namespace {

SUP_FILE_TYPE read(const std::string& text, std::string& console) {
  SUP_FILE_TYPE sup;
  sup.file = test::text_file("model.sup", text);
  sup.mesh_file = "kept";
  console = test::console_of_returning([&] { READ_SUP(sup); });
  return sup;
}

TEST(ReadSup, takes_names_as_written_and_tells_each) {
  std::string console;
  const auto sup = read(
      "SUPER\r\nMesh2d \"old.2dm\"\r\nMESH2D \"my mesh.2dm\"\r\ndata \"..\\res ults\\a_h.dat\"\r\n"
      "DATAX file.dat\nMATL x.mat\nDATA '/abs/b.xmdf'",
      console);
  EXPECT_EQ(sup.folder, ::testing::TempDir());
  EXPECT_EQ(sup.mesh_file, "my mesh.2dm");
  EXPECT_EQ(sup.data_file_count, 3);
  EXPECT_EQ(sup.data_files,
            (std::vector<std::string>{"..\\res ults\\a_h.dat", "file.dat", "/abs/b.xmdf"}));
  EXPECT_EQ(console, "Scanning File: " + sup.file + R"(
Found: 3 data file in .sup file.
Rewinding .sup file...
   Done.
Allocate arrarys for .sup file data.
   Done.
Reading .sup file...
2DM File:  old.2dm
2DM File:  my mesh.2dm
Data file: ..\res ults\a_h.dat
Data file: file.dat
Data file: /abs/b.xmdf
   Done.
)");
}

TEST(ReadSup, empty_and_short_lines_and_lines_beyond_1000_characters) {
  std::string console;
  EXPECT_EQ(read("", console).mesh_file, "kept");
  const auto sup = read("DATA\nMESH2D\nDATA " + std::string(2000, 'x'), console);
  EXPECT_EQ(sup.mesh_file, "");
  EXPECT_EQ(sup.data_files, (std::vector<std::string>{"", std::string(995, 'x')}));
}

}  // namespace
}  // namespace quillet
