// Headers as other programs write them, and what this one makes of them.
#include <gtest/gtest.h>

#include "case_names.h"
#include "dat/dat_reader.h"
#include "dat/dat_writer.h"
#include "dat_builder.h"
#include "program_runner.h"
#include "same_results.h"

namespace quillet {
namespace {

using testing::DatBuilder;

struct HeaderCase {
  std::string name;
  std::string bytes;
  bool is_vector;
  std::string dataset_name;
};
class DatHeaders : public ::testing::TestWithParam<HeaderCase> {};

TEST_P(DatHeaders, AreRead) {
  const testing::Workspace folder;
  folder.write("a.dat", GetParam().bytes);
  DatReader reader(folder.path("a.dat"));
  reader.read_header();
  EXPECT_EQ(reader.header().node_count, 2);
  EXPECT_EQ(reader.header().cell_count, 1);
  EXPECT_EQ(reader.header().is_vector, GetParam().is_vector);
  EXPECT_EQ(reader.header().name, GetParam().dataset_name);
  ASSERT_FALSE(reader.at_end());
  EXPECT_EQ(reader.next_time(), 1.5F);
}

std::string with_time(DatBuilder header) {
  testing::ADD_TIME(header, {1.5F, {1}, {1, 2, 3, 4}});
  return header.build();
}

INSTANTIATE_TEST_SUITE_P(
    Odd, DatHeaders,
    ::testing::Values(
        HeaderCase{"vector type and object id, later counts hold",
                   with_time(DatBuilder()
                                 .integer(3000)
                                 .card(150, 200)
                                 .card(170, 99)
                                 .card(160, 210)
                                 .integer(140)
                                 .name(" v  ")
                                 .card(180, 1)
                                 .card(170, 2)),
                   true, " v"},
        HeaderCase{"both kinds, vector later, no version",
                   with_time(DatBuilder().card(170, 2).integer(130).integer(140).card(180, 1)),
                   true, ""},
        HeaderCase{"unknown cards, sizes of any value",
                   with_time(DatBuilder()
                                 .integer(-1)
                                 .integer(210)
                                 .card(100, 130)
                                 .card(110, 8)
                                 .card(120, 4)
                                 .integer(999)
                                 .card(170, 2)
                                 .card(180, 1)
                                 .integer(0)),
                   false, ""},
        HeaderCase{"longer than any block of memory", with_time([] {
                     DatBuilder header;
                     for (int i = 0; i < 70001; ++i) header.integer(3000);
                     return header.card(170, 2).card(180, 1).name("far");
                   }()),
                   false, "far"}),
    testing::NameOfCase{});

TEST(DatNames, LongOnesLoseTheirLastCharacter) {
  const std::string letters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  EXPECT_EQ(DAT_DATASET_NAME(letters.substr(0, 40)), letters.substr(0, 40));
  EXPECT_EQ(DAT_DATASET_NAME(letters.substr(0, 41)), letters.substr(0, 40));
  EXPECT_EQ(DAT_DATASET_NAME(letters.substr(0, 50)), letters.substr(9, 40));
  EXPECT_EQ(DAT_DATASET_NAME(letters.substr(0, 40) + "   "), letters.substr(0, 40));
}

// Vectors go through pieces of memory; these fill several of the reader's and the writer's.
TEST(DatVectors, ManyKeepTheirOrder) {
  constexpr std::int32_t nodes = 300001;
  testing::DatTime step{0, {1}, {}};
  for (std::int32_t i = 1; i <= nodes; ++i) {
    step.values.push_back(static_cast<float>(i));
    step.values.push_back(static_cast<float>(-i));
  }
  const testing::Workspace folder;
  const testing::DatShape shape{nodes, 1, true};
  folder.write("a_v.dat", testing::DAT_FILE(shape, "a", {step, {1, {1}, step.values}}));
  testing::RUN(folder, {"-max", "-b", "a_v.dat"});

  DatBuilder expected = testing::DAT_HEADER(shape, "Max Value");
  testing::ADD_TIME(expected, {111111, {1}, step.values});
  testing::ADD_TIME(expected, {222222, {1}, std::vector<float>(nodes, 1)});
  testing::ADD_TIME(expected, {333333, {1}, std::vector<float>(nodes, 0)});
  EXPECT_TRUE(testing::SAME_RESULTS(folder.read("a_v(maxmax).dat"), expected.integer(210).build()));
}

}  // namespace
}  // namespace quillet
