// The worked examples of the pages on file formats are true.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "build_paths.h"
#include "dat_builder.h"
#include "program/xmdf_view.h"
#include "program_runner.h"

namespace quillet::testing {
namespace {

// The block of the page that is marked as of this language.
std::string block_of(const std::string& page, const std::string& language) {
  std::ifstream file(tests_folder + "/../docs/formats/" + page);
  std::string text;
  bool is_inside = false;
  for (std::string line; std::getline(file, line);) {
    if (is_inside && line == "```") return text;
    if (is_inside) text += line + "\n";
    if (line == "```" + language) is_inside = true;
  }
  ADD_FAILURE() << page << " has no block of " << language;
  return "";
}

// Lines of an offset, bytes in hexadecimal, and what they mean.
std::string bytes_of_dump(const std::string& dump) {
  std::string bytes;
  std::istringstream lines(dump);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line.substr(0, line.find('|')));
    std::size_t offset = 0;
    words >> offset;
    EXPECT_EQ(offset, bytes.size()) << line;
    for (std::string byte; words >> byte;) {
      bytes += static_cast<char>(std::stoi(byte, nullptr, 16));
    }
  }
  return bytes;
}

TEST(DocumentedFormats, TheDatFileIsThatOfItsDescription) {
  const DatShape shape{2, 1};
  EXPECT_EQ(bytes_of_dump(block_of("dat.md", "hex")),
            DAT_FILE(shape, "Depth", {{0, {0}, {0, 0.5F}}, {0.5F, {1}, {0.25F, 1.5F}}}));
}

TEST(DocumentedFormats, TheXmdfFileIsWritten) {
  const Workspace folder;
  folder.write("tiny_d.dat", bytes_of_dump(block_of("dat.md", "hex")));
  EXPECT_TRUE(RUN(folder, WORDS("-b -trim1 -out tiny.xmdf tiny_d.dat")).ended_well());
  const std::string dump = "cd '" + folder.path().string() + "' && h5dump ";
  EXPECT_EQ(TEXT_OF_COMMAND(dump + "-d /Trim/Temporal/trim1/Values tiny.xmdf") +
                TEXT_OF_COMMAND(dump + "-H -g /Trim/Temporal/trim1 tiny.xmdf"),
            block_of("xmdf.md", "h5dump"));
}

constexpr DatShape valley{5, 2};
const std::string levels =
    DAT_FILE(valley, "Water Level",
             {{0, {0, 1}, std::vector<float>(5, 31.5F)}, {1, {0, 0}, std::vector<float>(5, 99)}});
const std::vector<float> kept{0, 31.5F, 31.5F, 0, 31.5F};

TEST(DocumentedFormats, TheMeshIsRead) {
  const Workspace folder;
  folder.write("valley.2dm", block_of("2dm.md", "2dm"));
  folder.write("valley_h.dat", levels);
  const RunResult run = RUN(folder, WORDS("-b -max valley_h.dat"));
  EXPECT_NE(run.output.find("\n" + block_of("2dm.md", "console")), std::string::npos) << run.output;
  EXPECT_EQ(folder.read("valley_h(maxmax).dat"), DAT_FILE(valley, "Max Value",
                                                          {{111111, {0, 1}, kept},
                                                           {222222, {0, 1}, {0, 1, 1, 0, 1}},
                                                           {333333, {0, 1}, {0, 0, 0, 0, 0}}}));
}

TEST(DocumentedFormats, TheListIsRead) {
  const Workspace folder;
  folder.write("model.sup", block_of("sup.md", "sup"));
  folder.write("valley.2dm", block_of("2dm.md", "2dm"));
  folder.write("valley_h.dat", levels);
  folder.write("later/valley_h.dat", levels);
  const RunResult run = RUN(folder, WORDS("-b -max model.sup"));
  EXPECT_NE(run.output.find("\n" + block_of("sup.md", "console")), std::string::npos) << run.output;
  EXPECT_EQ(
      folder.read("model(maxmax).dat"),
      DAT_FILE(valley, "Max Value", {{111111, {0, 1}, kept}, {222222, {0, 1}, {0, 1, 1, 0, 1}}}));
}

}  // namespace
}  // namespace quillet::testing
