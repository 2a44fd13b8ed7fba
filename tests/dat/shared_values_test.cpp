// The values of a large output time, shared by crews: each is handed on once with its node, and
// what cannot be read is left to the caller.
#include "dat/shared_values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "in_crew_of.h"
#include "program_runner.h"

namespace quillet {
namespace {

using testing::Workspace;

constexpr std::int64_t start_of_values = 92;

class Recorder : public OutputPieces {
 public:
  Recorder(std::int64_t nodes, int per_node)
      : values(nodes * per_node), times_taken(nodes), components(per_node) {}

  void take_statuses(std::int64_t, std::span<const std::int8_t>) override {}
  void take_values(std::int64_t first_node, std::span<const float> taken) override {
    std::copy(taken.begin(), taken.end(), values.begin() + first_node * components);
    for (std::int64_t i = 0; i < std::ssize(taken) / components; ++i) ++times_taken[first_node + i];
  }

  std::vector<float> values;
  std::vector<int> times_taken;

 private:
  int components;
};

class ValuesOfCrews : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(ValuesOfCrews, AreEachHandedOnOnce) {
  const auto& [threads, components] = GetParam();
  const std::int64_t count = 2 * 711'111;  // in more shares than threads, the last one shorter
  std::string bytes(start_of_values, ' ');
  std::mt19937 random(9);
  for (std::int64_t i = 0; i < count; ++i) {
    const auto value = static_cast<float>(random());
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  const Workspace folder;
  folder.write("whole.dat", bytes);
  folder.write("cut.dat", bytes.substr(0, bytes.size() - 3));

  const DatValues values{start_of_values, count, components};
  for (const std::string name : {"whole.dat", "cut.dat"}) {
    const InputUnit file(folder.path(name));
    Recorder recorder(count / components, components);
    std::int64_t own_end = 0;
    test::in_crew_of(threads, [&, per_node = components] {
      SharedValues shared;
      shared.hand_on(file, values, recorder, [&](const DatStretch& stretch) {
        own_end = stretch.first + stretch.count;
        for (std::int64_t i = stretch.first; i < own_end; i += per_node) {
          float pair[2] = {};
          const std::int64_t size = per_node * std::int64_t{sizeof(float)};
          file.read_at(start_of_values + i * 4, pair, size);
          recorder.take_values(i / per_node, std::span(pair).first(per_node));
        }
      });
    });
    const bool is_cut = name == "cut.dat";
    EXPECT_EQ(own_end == count, is_cut || threads == 1);
    const std::size_t known = recorder.values.size() - 1;
    EXPECT_EQ(std::memcmp(recorder.values.data(), &bytes[start_of_values], known * 4), 0);
    // What was handed on before the cut was met comes again from the caller.
    EXPECT_TRUE(std::all_of(recorder.times_taken.begin(), recorder.times_taken.end(),
                            [&](int times) { return times == 1 || (is_cut && times == 2); }));
  }
}

INSTANTIATE_TEST_SUITE_P(Threads, ValuesOfCrews,
                         ::testing::Combine(::testing::Values(1, 2, 3, 8),
                                            ::testing::Values(1, 2)));

}  // namespace
}  // namespace quillet
