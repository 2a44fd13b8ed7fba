// -max and -min on small files: every byte of the output, worked out by hand.
#include <gtest/gtest.h>

#include <cmath>

#include "dat_builder.h"
#include "program_runner.h"
#include "same_results.h"

namespace quillet::testing {
namespace {

using Statuses = std::vector<int>;
using Values = std::vector<float>;

constexpr DatShape scalars{3, 2, false};
constexpr DatShape vectors{2, 1, true};

std::string input(const std::vector<DatTime>& times) {
  return DAT_FILE(scalars, "depth", times);
}
std::string vector_input(const std::vector<DatTime>& times) {
  return DAT_FILE(vectors, "velocity", times);
}

// The maps of an output; times only where there is one input.
std::string maps(const DatShape& shape, const std::string& name, const Statuses& status,
                 const Values& values, const Values& sources, const Values& times) {
  std::vector<DatTime> written{{111111, status, values}, {222222, status, sources}};
  if (!times.empty()) written.push_back({333333, status, times});
  return DAT_FILE(shape, name, written);
}

std::string maxima(const Statuses& status, const Values& values, const Values& sources,
                   const Values& times = {}) {
  return maps(scalars, "Max Value", status, values, sources, times);
}
std::string minima(const Statuses& status, const Values& values, const Values& sources,
                   const Values& times = {}) {
  return maps(scalars, "Min Value", status, values, sources, times);
}
std::string vector_maxima(const Statuses& status, const Values& values, const Values& sources,
                          const Values& times = {}) {
  return maps(vectors, "Max Value", status, values, sources, times);
}

// The inputs become a_d.dat, b_d.dat and so on.
void expect_maps(const std::string& what, const std::string& options,
                 const std::vector<std::string>& inputs, const std::string& expected,
                 const std::string& line = "") {
  const Workspace folder;
  std::vector<std::string> arguments = WORDS(options + " -b -out out.dat");
  char letter = 'a';
  for (const std::string& bytes : inputs) {
    arguments.push_back(std::string(1, letter++) + "_d.dat");
    folder.write(arguments.back(), bytes);
  }
  const RunResult run = RUN(folder, arguments);
  EXPECT_TRUE(SAME_RESULTS(folder.read("out.dat"), expected)) << what << run.output;
  EXPECT_TRUE(run.has_line(line)) << what << run.output;
  EXPECT_TRUE(run.ended_well());
}

const DatTime last{9, {1, 1}, {90, 90, 90}};
const std::string used =
    "File has maximums stored (time = 99,999) using these values and ignoring all other timesteps.";
const std::string not_compared = "WARNING - Last output time is not compared: ";

TEST(Extremes, OfOneScalarFile) {
  expect_maps("ties keep the earlier time; negative nodes stay 0; statuses by absolute value",
              "-max", {input({{1, {1, 0}, {5, -1, 2}}, {2, {0, -1}, {5, -2, 3}}, last})},
              maxima({1, 1}, {5, 0, 3}, {1, 0, 1}, {1, 0, 2}), not_compared + "9");
  expect_maps("the minimum mirrors it; a cell is active when it always was", "-min",
              {input({{1, {1, -1}, {-5, 1, -2}}, {2, {-1, 0}, {-5, 2, -3}}, last})},
              minima({1, 0}, {-5, 0, -3}, {1, 0, 1}, {1, 0, 2}),
              "WARNING - Negative times are written as 111111 in .dat files.");
  expect_maps("a single output time is never compared", "-max", {input({last})},
              maxima({0, 0}, {0, 0, 0}, {0, 0, 0}, {0, 0, 0}), not_compared + "9");
  expect_maps("a stored maximum replaces everything but cannot fall below the start", "-max",
              {input({{1, {1, 1}, {50, 50, 50}}, {99999, {0, -1}, {7, -8, 9}}})},
              maxima({0, 1}, {7, 0, 9}, {1, 0, 1}, {99999, 99999, 99999}), used);
  expect_maps(
      "a stored minimum", "-min",
      {input({{1, {1, 1}, {-50, 0, 0}}, {99999.0078125F, {1, 0}, {-7, 8, -9}}})},
      minima({1, 0}, {-7, 0, -9}, {1, 0, 1}, {99999.0078125F, 99999.0078125F, 99999.0078125F}));
  expect_maps(
      "and passed over on the way", "-max -ignore_mm",
      {input({{1, {1, 0}, {5, 6, 7}}, {99999, {1, 1}, {8, 8, 8}}, {2, {0, 0}, {4, 7, 7}}, last})},
      maxima({1, 0}, {5, 7, 7}, {1, 1, 1}, {1, 2, 1}),
      "Ignoring maximum values as -ignore_MM specified.");
  expect_maps("times of maxima end the scan", "-max",
              {input({{1, {1, 0}, {5, 6, 7}},
                      {99999.1F, {1, 1}, {80, 80, 80}},
                      {2, {1, 1}, {90, 90, 90}},
                      {99999, {1, 1}, {99, 99, 99}}})},
              maxima({1, 0}, {5, 6, 7}, {1, 1, 1}, {1, 1, 1}));
  expect_maps("source and time maps are no results", "-max",
              {input({{111111, {1, 0}, {5, 6, 7}},
                      {222222, {1, 1}, {10, 10, 10}},
                      {333333, {1, 1}, {20, 20, 20}},
                      last})},
              maxima({1, 0}, {5, 6, 7}, {1, 1, 1}, {111111, 111111, 111111}),
              "Skipping marker time, time found: 333333");
  expect_maps("a maximum that stands alone, kept or trimmed, is compared", "-max",
              {input({{111111, {1, -1}, {5, 0, 7}}})},
              maxima({1, 1}, {5, 0, 7}, {1, 0, 1}, {111111, 0, 111111}), "Processing");
  expect_maps("statuses: 1 until stated, then those before, larger absolute values", "-max",
              {input({{1, {}, {1, 1, 1}},
                      {2, {-3, 0}, {2, 0, 0}},
                      {3, {}, {0, 3, 0}},
                      {9, {0, 0}, {90, 90, 90}}})},
              maxima({3, 1}, {2, 3, 1}, {1, 1, 1}, {2, 3, 1}));
  expect_maps("what is no number never wins; infinity does; times may be negative", "-max",
              {input({{-1.5F, {1, 1}, {NAN, NAN, INFINITY}}, {0, {1, 1}, {-0.0F, 1, 4}}, last})},
              maxima({1, 1}, {0, 1, INFINITY}, {0, 1, 1}, {0, 0, -1.5F}));
}

TEST(Extremes, OfManyFiles) {
  expect_maps("sources by file, no times; equal values belong to the first file", "-max",
              {input({{1, {1, 0}, {5, 1, -1}}, last}), input({{1, {0, 0}, {5, 2, -2}}, last}),
               input({{1, {0, 0}, {4, 2, -2}}, {99999, {0, -1}, {5, 2, 3}}})},
              maxima({1, 1}, {5, 2, 3}, {1, 2, 3}));
  expect_maps("a minimum at one time; a wider tolerance finds another time", "-min -t2 -dttol0.5",
              {input({{1.6F, {1, 1}, {-5, 5, -5}}, {2, {1, 1}, {-9, -9, -9}}}),
               input({{1, {0, 0}, {-8, -8, -8}}, {2, {0, 1}, {-5, 5, -6}}})},
              minima({0, 1}, {-5, 0, -6}, {1, 0, 2}));
  expect_maps("stored values asked for by their time are used whatever is ignored",
              "-max -t99999 -ignore_mm",
              {input({{1, {1, 1}, {50, 50, 50}}, {99999, {1, 0}, {1, 2, 3}}}),
               input({{99999, {1, 0}, {3, 2, 1}}})},
              maxima({1, 0}, {3, 2, 3}, {2, 1, 1}));
  expect_maps("a file without output times contributes nothing", "-max",
              {input({}), input({{1, {1, 0}, {5, 1, -1}}, last})},
              maxima({1, 0}, {5, 1, 0}, {2, 2, 0}), "WARNING - No output times in \"a_d.dat\"");
}

const std::string unreadable_maps =
    "WARNING - Source and time maps in a vector .dat file cannot be read by other programs, use an "
    ".xmdf output.";
const DatTime last_vectors{9, {1}, {90, 90, 90, 90}};
const std::string written_maxima = vector_maxima({1}, {0, -6, 3, 4}, {1, 1}, {2, 1});

TEST(Extremes, OfVectors) {
  expect_maps("the longer vector wins and keeps its components", "-max",
              {vector_input({{1, {1}, {3, -4, 3, 4}}, {2, {0}, {0, -6, -5, 0}}, last_vectors})},
              written_maxima, unreadable_maps);
  expect_maps("negligible vectors have no length", "-max",
              {vector_input({{1, {1}, {1e-6F, 1e-6F, 0, 2e-6F}}, last_vectors})},
              vector_maxima({1}, {0, 0, 0, 2e-6F}, {0, 1}, {0, 1}));
  expect_maps("the program reads the maps that it wrote", "-max", {written_maxima},
              vector_maxima({1}, {0, -6, 3, 4}, {1, 1}, {111111, 111111}),
              "Skipping marker time, time found: 222222");
  expect_maps("222222 hours in another vector file hold vectors", "-max -t222222",
              {vector_input({{1, {1}, {1, 0, 1, 0}}, {222222, {1}, {3, 0, 4, 0}}}),
               vector_input({{222222, {0}, {0, 2, 0, 5}}})},
              vector_maxima({1}, {3, 0, 0, 5}, {1, 2}));
}

// Of different quantities only the levels are restricted to the nodes of active cells.
TEST(Extremes, OfMixedQuantities) {
  const Workspace folder;
  const DatShape shape{4, 1};
  folder.write("a.2dm", "MESH2D\nE3T 1 1 2 3 1\nND 1 0 0 0\nND 2 1 0 0\nND 3 0 1 0\nND 4 1 1 0\n");
  folder.write("a_h.dat", DAT_FILE(shape, "h", {{1, {1}, {5, 5, 5, 5}}, {2, {1}, {0, 0, 0, 0}}}));
  folder.write("b_d.dat", DAT_FILE(shape, "d", {{1, {0}, {6, 4, 6, 4}}, {2, {1}, {0, 0, 0, 0}}}));
  RUN(folder, WORDS("-max -b -out r a_h.dat b_d.dat"));
  EXPECT_TRUE(SAME_RESULTS(folder.read("r.dat"),
                           maps(shape, "Max Value", {1}, {6, 5, 6, 4}, {2, 1, 2, 2}, {})));
}

}  // namespace
}  // namespace quillet::testing
