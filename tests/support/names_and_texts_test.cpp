#include <gtest/gtest.h>

#include "support/close_names.h"
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
  EXPECT_EQ(FILE_SUFFIX(parts.name), parts.suffix);
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

TEST(Texts, AreComparedWithoutCaseQuotesAndBlanks) {
  EXPECT_TRUE(ASAME(" \"Me%\"\t", "mE% "));
  EXPECT_TRUE(ASAME("'h'", "H"));
  EXPECT_FALSE(ASAME("n", "n2"));
  EXPECT_FALSE(ASAME("a b", "ab"));
  EXPECT_TRUE(FLAGEXISTS("ATOI", "toi "));
  EXPECT_FALSE(FLAGEXISTS("co", "con"));
}

TEST(EditDistance, CountsWhatAHandMistypes) {
  EXPECT_EQ(EDIT_DISTANCE("run1_d.dat", "RUN1_D.DAT", 2), 0);
  EXPECT_EQ(EDIT_DISTANCE("run1", "rnu1", 2), 1);
  EXPECT_EQ(EDIT_DISTANCE("run1", "run", 2), 1);
  EXPECT_EQ(EDIT_DISTANCE("run1", "brun1x", 2), 2);
  EXPECT_EQ(EDIT_DISTANCE("run1", "sun2x", 2), 3);
  EXPECT_EQ(EDIT_DISTANCE("ab", "bca", 9), 3);
  EXPECT_EQ(EDIT_DISTANCE("", "abc", 9), 3);
  EXPECT_EQ(EDIT_DISTANCE("", "abc", 1), 2);
}

}  // namespace
}  // namespace quillet
