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

TEST(Brackets, CloseTheNamesThatTheProgramMakes) {
  const auto expect = [](const std::string& name, const std::string& bare,
                         const std::vector<std::string>& brackets) {
    EXPECT_EQ(SPLIT_BRACKETS(name).name, bare) << name;
    EXPECT_EQ(SPLIT_BRACKETS(name).brackets, brackets) << name;
  };
  expect("a(1)/run1_h(range)(maxmax).dat ", "a(1)/run1_h.dat", {"(range)", "(maxmax)"});
  expect("run_h(k99999.1).dat", "run_h.dat", {"(k99999.1)"});
  expect("run_h (2).xmdf", "run_h.xmdf", {" (2)"});
  expect("run_d(a(b)).dat", "run_d.dat", {"(a(b))"});
  expect("run(v2)_h.dat", "run(v2)_h.dat", {});
  expect("C:\\r\\(x).dat", "C:\\r\\(x).dat", {});
  expect("run_h).dat", "run_h).dat", {});
  expect("a(b/c).dat", "a(b/c).dat", {});
}

TEST(Texts, AreShownWithoutControlCharacters) {
  EXPECT_EQ(SHOWN("a\tb\n\x1b[2Jc\x7f"), "a?b??[2Jc?");
  EXPECT_EQ(SHOWN(std::string("\0x", 2)), "?x");
  EXPECT_EQ(SHOWN("\xC2\x80 \xC2\x9F \xC2\xA0"), "? ? \xC2\xA0");
  EXPECT_EQ(SHOWN("gr\xC3\x9F \xE2\x82\x80 \xC2"), "gr\xC3\x9F \xE2\x82\x80 \xC2");
}

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
