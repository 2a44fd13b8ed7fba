// Files that are not what they should be: one clear line, no crash, no result.
#include <gtest/gtest.h>

#include <climits>
#include <random>

#include "case_names.h"
#include "dat_builder.h"
#include "program_runner.h"
#include "same_results.h"

namespace quillet::testing {
namespace {

const RunSettings little_memory{.address_space = rlim_t{512} << 20};

// Whatever the input, a run is complete or has said why not.
bool is_complete(const Workspace& folder, const RunResult& run) {
  const int errors = run.count_lines_with("ERROR");
  EXPECT_TRUE(run.ended_well()) << run.output;
  EXPECT_EQ(errors + run.count_lines_with("Finished."), 1) << run.output;
  EXPECT_EQ(errors, run.count_lines_with("ERROR - Reading file \"a_d.dat\": expected ") +
                        run.count_lines_with("ERROR - No output times in \"a_d.dat\""))
      << run.output;
  EXPECT_EQ(folder.has("r.dat"), errors == 0) << run.output;
  EXPECT_FALSE(folder.has("r.dat.part"));
  return errors == 0;
}

RunResult run_on(const Workspace& folder, const std::string& bytes) {
  folder.write("a_d.dat", bytes);
  std::filesystem::remove(folder.path("r.dat"));
  return RUN(folder, {"-max", "-b", "a_d.dat", "-out", "r.dat"}, little_memory);
}

class CutFiles : public ::testing::TestWithParam<bool> {};

TEST_P(CutFiles, AreShorterOrRefusedAtEveryLength) {
  constexpr std::size_t header_end = 92;
  constexpr std::size_t node_count_end = 40;
  constexpr std::size_t cell_count_end = 48;
  constexpr std::size_t card = 4;
  const DatShape shape{2, 3, GetParam()};
  const std::vector<float> values =
      GetParam() ? std::vector<float>{3, -4, 0, 7} : std::vector<float>{3, 4};
  const std::vector<float> zeros(values.size(), 0);
  const std::string whole = DAT_FILE(shape, "a", {{2, {1, -1, 0}, values}, {3, {0, 0, 0}, values}});
  const std::size_t step = card + 1 + 4 + 3 + 4 * values.size();

  const auto maps = [&](int status, const std::vector<float>& map, float source, float when) {
    return DAT_FILE(shape, "Max Value",
                    {{111111, {status, status, 0}, map},
                     {222222, {status, status, 0}, {source, source}},
                     {333333, {status, status, 0}, {when, when}}});
  };
  const std::string nothing_compared = maps(0, zeros, 0, 0);
  const std::string first_compared = maps(1, values, 1, 2);

  const Workspace folder;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    SCOPED_TRACE(length);
    const std::size_t steps = length <= header_end ? 0 : (length - header_end) / step;
    const bool ends_between_steps =
        length <= header_end || length - header_end - steps * step <= card;
    const RunResult run = run_on(folder, whole.substr(0, length));
    ASSERT_EQ(is_complete(folder, run), length >= node_count_end && ends_between_steps)
        << run.output;
    if (!folder.has("r.dat") || length < cell_count_end) continue;
    ASSERT_TRUE(folder.read("r.dat") == (steps == 2 ? first_compared : nothing_compared));
  }
}

INSTANTIATE_TEST_SUITE_P(ScalarAndVector, CutFiles, ::testing::Bool(),
                         (NameOfCondition{"Vectors", "Scalars"}));

std::string with_counts(const DatShape& shape, const std::vector<int>& statuses) {
  const std::vector<float> values{1, 2, 3, 4};
  return DAT_FILE(shape, "a", {{0, statuses, values}, {1, statuses, values}});
}

// What a header said before it was cut counts.
TEST(CutFiles, KeepTheCountsThatWereRead) {
  const Workspace folder;
  for (const int card : {170, 180}) {
    folder.write("a_d.dat", DatBuilder().card(170, 2).card(180, 3).integer(card).byte(1).build());
    const RunResult run = RUN(folder, WORDS("-b -max -out r.dat a_d.dat"));
    EXPECT_TRUE(run.has_line("Number Cells: 3")) << run.output;
    EXPECT_TRUE(run.has_line("Number Nodes: 2")) << run.output;
    EXPECT_TRUE(folder.read("r.dat") == DAT_FILE({2, 3}, "Max Value",
                                                 {{111111, {0, 0, 0}, {0, 0}},
                                                  {222222, {0, 0, 0}, {0, 0}},
                                                  {333333, {0, 0, 0}, {0, 0}}}));
  }
}

TEST(RefusedFiles, EndTheRunBeforeAnythingIsSizedByThem) {
  const Workspace folder;
  for (const auto& [what, bytes] : std::vector<std::pair<std::string, std::string>>{
           {"empty", ""},
           {"text", "x,y,depth\n1.0,2.0,0.5\n"},
           {"much text", std::string(300000, 'x')},
           {"negative nodes", with_counts({-1, 1}, {1})},
           {"most negative nodes", with_counts({INT_MIN, 1}, {1})},
           {"negative cells", with_counts({4, -1}, {1})},
           {"most negative cells", with_counts({4, INT_MIN}, {})},
           {"more nodes than values", with_counts({99, 1}, {1})},
           {"most nodes", with_counts({INT_MAX, 1}, {1})},
           {"most nodes of vectors", with_counts({INT_MAX, 1, true}, {1})},
           {"most cells", with_counts({4, INT_MAX}, {1})},
           {"most cells that no statuses bear out", with_counts({4, INT_MAX}, {})},
           {"most nodes that no values bear out", DAT_FILE({INT_MAX, 1}, "a", {})},
           {"most cells of no output time", DAT_FILE({4, INT_MAX}, "a", {})}}) {
    EXPECT_FALSE(is_complete(folder, run_on(folder, bytes))) << what;
  }
}

// A header of 92 bytes bears out nothing: what needs no values is done, what would write a map of
// nothing is not.
TEST(CountsThatNothingBearsOut, SizeNothing) {
  const DatShape huge{120'000'000, 120'000'000};
  for (const auto& [arguments, is_map] :
       std::vector<std::pair<std::string, bool>>{{"-max", true},
                                                 {"-min", true},
                                                 {"-dur1", true},
                                                 {"-toi1", true},
                                                 {"-trim1", false},
                                                 {"-r5", false},
                                                 {"-rangeA0 -rangeB1", false},
                                                 {"-dif -nowetdry a_d.dat", false},
                                                 {"-con a_d.dat", false}}) {
    const Workspace folder;
    folder.write("a_d.dat", DAT_FILE(huge, "a", {}));
    const RunResult run = RUN(folder, WORDS("-b -out r.dat " + arguments + " a_d.dat"),
                              {.address_space = rlim_t{256} << 20});
    EXPECT_EQ(run.has_line("ERROR - No output times in \"a_d.dat\""), is_map) << run.output;
    EXPECT_EQ(folder.has("r.dat"), !is_map) << arguments << run.output;
    EXPECT_TRUE(run.ended_well());
    EXPECT_TRUE(is_map || folder.read("r.dat").size() == 96U);
  }
}

TEST(CountsThatNothingBearsOut, AreWrittenInSmallMaps) {
  const Workspace folder;
  folder.write("a_d.dat", DAT_FILE({2, 1}, "a", {}));
  EXPECT_TRUE(RUN(folder, WORDS("-b -max -out r.dat a_d.dat")).has_line("Finished."));
  EXPECT_TRUE(SAME_RESULTS(
      folder.read("r.dat"),
      DAT_FILE({2, 1}, "Max Value",
               {{111111, {0}, {0, 0}}, {222222, {0}, {0, 0}}, {333333, {0}, {0, 0}}})));
}

TEST(DamagedFiles, NeverCrashTheRun) {
  const Workspace folder;
  const std::string sound = DAT_FILE({5, 3, true}, "velocity",
                                     {{0, {}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}},
                                      {1, {1, 0, 1}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}},
                                      {2, {0, 1, 1}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}},
                                      {99999, {1, 1, 1}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 0}}});
  constexpr std::int32_t odd[] = {-1, 0, 1, 130, 140, 170, 180, 190, 200, 210, 65536, INT_MIN};
  for (unsigned seed = 1; seed <= 250; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::string bytes = sound;
    const auto damages = 1 + random() % 4;
    for (unsigned damage = 0; damage < damages; ++damage) {
      const std::size_t place = random() % bytes.size();
      switch (random() % 4) {
        case 0:
          bytes[place] = static_cast<char>(random());
          break;
        case 1:
          bytes.replace(place / 4 * 4, 4, DatBuilder().integer(odd[random() % 12]).build());
          break;
        case 2:
          bytes.erase(place, random() % 9);
          break;
        default:
          bytes.insert(place, std::string(random() % 9, '\1'));
      }
    }
    is_complete(folder, run_on(folder, bytes));
  }
}

}  // namespace
}  // namespace quillet::testing
