#include "support/line_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "mesh_test_files.h"
#include "support/line_block.h"

namespace quillet {
namespace {

std::vector<std::string> lines_of(std::string_view text, std::size_t width, std::size_t block) {
  const InputUnit unit(test::text_file("lines.txt", text));
  LineReader reader(unit, width, block);
  std::vector<std::string> lines;
  for (std::string_view line; reader.next(line);) lines.emplace_back(line);
  return lines;
}

std::vector<std::string> naive_lines(const std::string& text, std::size_t width) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; start < text.size();) {
    const auto end = std::min(text.find('\n', start), text.size());
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line.substr(0, width));
    start = end + 1;
  }
  return lines;
}

// Blocks that are barely larger than a line put a block's end everywhere, also inside of lines that
// are longer than several blocks.
TEST(LineReader, agrees_with_splitting_the_whole_text_for_any_block) {
  std::mt19937 random(7);
  for (int round = 0; round < 60; ++round) {
    std::string text;
    const std::size_t longest = round % 3 == 0 ? 70 : 12;
    for (int line = 0; line < 40; ++line) {
      for (std::size_t i = random() % longest; i > 0; --i) text += static_cast<char>('a' + i % 26);
      text += random() % 3 == 0 ? "\r\n" : "\n";
    }
    if (round % 2 == 0) text += "last";
    for (const std::size_t block : {11, 12, 13, 20, 64, 1 << 20}) {
      ASSERT_EQ(lines_of(text, 10, block), naive_lines(text, 10)) << "block " << block;
    }
  }
}

// Wherever stretches meet, in lines, at their ends, and in lines longer than several stretches.
TEST(LineBlock, finds_each_line_in_one_stretch) {
  std::mt19937 random(8);
  for (int round = 0; round < 40; ++round) {
    std::string text;
    const std::size_t longest = round % 4 == 0 ? 3000 : 12;
    while (text.size() < 8000) text += std::string(random() % longest, 'a') + '\n';
    if (round % 2 == 0) text += "last";
    const InputUnit unit(test::text_file("lines.txt", text));
    for (const std::size_t stretch : {1, 2, 7, 64, 1000, 1 << 20}) {
      LineBlock block;
      std::size_t next = 0;
      for (std::size_t begin = 0; begin < text.size(); begin += stretch) {
        const bool has_line_end = text.find('\n', begin > 0 ? begin - 1 : 0) != std::string::npos;
        ASSERT_EQ(block.read(unit, static_cast<std::int64_t>(begin),
                             static_cast<std::int64_t>(begin + stretch)),
                  has_line_end);
        if (!has_line_end) break;
        ASSERT_EQ(block.begin(), static_cast<std::int64_t>(next));
        ASSERT_EQ(block.lines(), text.substr(next, block.lines().size()));
        next = static_cast<std::size_t>(block.end());
        ASSERT_TRUE(next >= std::min(begin + stretch, text.rfind('\n') + 1)) << begin;
      }
      ASSERT_EQ(next, text.rfind('\n') + 1) << "stretch " << stretch;
    }
  }
}

}  // namespace
}  // namespace quillet
