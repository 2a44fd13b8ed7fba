#include <gtest/gtest.h>

#include <filesystem>

#include "program_runner.h"
#include "support/file_names.h"
#include "support/text.h"

namespace quillet {
namespace {

struct Parts {
  std::string name;
  std::string folder;
  std::string own;
  std::string extension;
  std::string suffix;  // from the last "_"
  std::string up_to_suffix;
};
class FileNames : public ::testing::TestWithParam<Parts> {};

TEST_P(FileNames, FallIntoParts) {
  const Parts& parts = GetParam();
  EXPECT_EQ(FILEFOLDERPATH(parts.name), parts.folder);
  EXPECT_EQ(FILENAME(parts.name), parts.own);
  EXPECT_EQ(FILENAMEPATH(parts.name), parts.folder + parts.own);
  EXPECT_EQ(FILEEXT(parts.name), parts.extension);
  EXPECT_EQ(FILE___EXT(parts.name), parts.suffix);
  EXPECT_EQ(FILENAMEPATHNO_(parts.name), parts.up_to_suffix);
}

INSTANTIATE_TEST_SUITE_P(
    All, FileNames,
    ::testing::Values(Parts{"C:\\run\\res_h.DAT", "C:\\run\\", "res_h", ".dat", "_h",
                            "C:\\run\\res"},
                      Parts{"a/b.c/run", "a/b.c/", "run", "", "", "a/b.c/run"},
                      Parts{"in_1/run.dat", "in_1/", "run", ".dat", "", "in_1/run"},
                      Parts{"a\\b/x_y_d.1.dat  ", "a\\b/", "x_y_d.1", ".dat", "_d.1", "a\\b/x_y"},
                      Parts{"run_.dat", "", "run_", ".dat", "_", "run"},
                      Parts{".dat", "", "", ".dat", "", ""}, Parts{"", "", "", "", "", ""}));

TEST(FileNames, OfOneFileAreFoundTheSame) {
  const testing::Workspace folder;
  folder.write("in/a", "x");
  folder.write("b", "x");
  std::filesystem::create_symlink("in/a", folder.path("link"));
  std::filesystem::create_hard_link(folder.path("in/a"), folder.path("hard"));
  const std::string a = folder.path("in/a");
  EXPECT_TRUE(SAME_FILE(a, folder.path("in/../in/a")));
  EXPECT_TRUE(SAME_FILE(a, folder.path("link")));
  EXPECT_TRUE(SAME_FILE(folder.path("hard"), a));
  EXPECT_FALSE(SAME_FILE(a, folder.path("b")));
  EXPECT_FALSE(SAME_FILE(folder.path("no"), folder.path("no")));
  EXPECT_TRUE(FILE_EXISTS(a));
  EXPECT_FALSE(FILE_EXISTS(folder.path("in")));
}

TEST(FileNames, BackslashesOpenAsSeparators) {
  EXPECT_EQ(SYSTEM_NAME("in\\a/b"), "in/a/b");
  EXPECT_TRUE(IS_ABSOLUTE_NAME("C:\\x"));
  EXPECT_TRUE(IS_ABSOLUTE_NAME("\\\\server\\x"));
  EXPECT_TRUE(IS_ABSOLUTE_NAME("/x"));
  EXPECT_FALSE(IS_ABSOLUTE_NAME("x/y"));
}

TEST(Texts, AreComparedWithoutCaseQuotesAndBlanks) {
  EXPECT_TRUE(ASAME(" \"Me%\"\t", "mE% "));
  EXPECT_TRUE(ASAME("'h'", "H"));
  EXPECT_FALSE(ASAME("n", "n2"));
  EXPECT_FALSE(ASAME("a b", "ab"));
  EXPECT_TRUE(FLAGEXISTS("ATOI", "toi "));
  EXPECT_FALSE(FLAGEXISTS("co", "con"));
}

TEST(Texts, Trimming) {
  EXPECT_EQ(TRIMF(" a \t  "), " a \t");
  EXPECT_EQ(TRIM_BOTH("\t a b\t "), "a b");
  EXPECT_TRUE(BLANK("   "));
  EXPECT_FALSE(BLANK(std::string_view("\0", 1)));
  EXPECT_EQ(REMOVEQUOTES("\t\"a b\" "), "a b");
  EXPECT_EQ(REMOVEQUOTES("'a b'"), "a b");
  EXPECT_EQ(REMOVEQUOTES("O'Brien's"), "O'Brien's");
  EXPECT_EQ(QUOTED("a  "), "\"a\"");
  EXPECT_EQ(UPPERCASE("a\xe9z_9"), "A\xe9Z_9");
}

}  // namespace
}  // namespace quillet
