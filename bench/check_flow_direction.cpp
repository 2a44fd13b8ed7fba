// Compares FLOW_DIRECTION with std::atan2 in 64-bit over several hundred million pairs and prints,
// per group of pairs, how many were compared, how many differ at all, the largest difference in
// units in the last place, and the time both take per pair. Ends with 1 when a result is more than
// one unit off, has the wrong sign, or differs where it has to be exact.
//
//   check_flow_direction [millions of random bit patterns, 200 unless given]
#include <fmt/core.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string_view>
#include <vector>

#include "operations/flow_direction.h"

namespace {

constexpr std::int64_t batch_size = 4096;

struct Pair {
  float x;
  float y;
};

double seconds_now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

float reference(float x, float y) {
  return static_cast<float>(std::atan2(static_cast<double>(x), static_cast<double>(y)) *
                            57.29577951308232);
}

// Place of a value in the ascending sequence of all 32-bit reals; both zeros have place 0.
std::int64_t place(float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const auto magnitude = static_cast<std::int64_t>(bits & 0x7FFFFFFFU);
  return std::signbit(value) ? -magnitude : magnitude;
}

class Group {
 public:
  Group(std::string_view name, std::int64_t tolerance) : name_(name), tolerance_(tolerance) {}

  void add(Pair pair) {
    x_.push_back(pair.x);
    y_.push_back(pair.y);
    if (std::ssize(x_) == batch_size) compare();
  }

  // Prints the group's line; returns whether every pair was within the tolerance.
  bool finish() {
    compare();
    const double to_ns = 1e9 / static_cast<double>(compared_);
    fmt::print(
        "{:<30}{:>11} compared {:>6} differ {:>2} ulp at most {:>8.2f} ns {:>8.2f} ns atan2\n",
        name_, compared_, differing_, largest_, kernel_seconds_ * to_ns,
        reference_seconds_ * to_ns);
    return violations_ == 0 && compared_ > 0;
  }

 private:
  void compare() {
    const auto count = std::ssize(x_);
    degrees_.resize(x_.size());
    expected_.resize(x_.size());
    const double start = seconds_now();
    quillet::FLOW_DIRECTION(x_.data(), y_.data(), degrees_.data(), count);
    const double middle = seconds_now();
    for (std::int64_t i = 0; i < count; ++i) expected_[i] = reference(x_[i], y_[i]);
    kernel_seconds_ += middle - start;
    reference_seconds_ += seconds_now() - middle;
    for (std::int64_t i = 0; i < count; ++i) compare_one(i);
    compared_ += count;
    x_.clear();
    y_.clear();
  }

  void compare_one(std::int64_t i) {
    const float got = degrees_[i];
    const float expected = expected_[i];
    if (std::isnan(got) && std::isnan(expected)) return;
    if (std::bit_cast<std::uint32_t>(got) == std::bit_cast<std::uint32_t>(expected)) return;
    const std::int64_t difference = std::abs(place(got) - place(expected));
    ++differing_;
    largest_ = std::max(largest_, difference);
    const bool same_kind =
        std::isnan(got) == std::isnan(expected) && std::signbit(got) == std::signbit(expected);
    if (difference <= tolerance_ && same_kind) return;
    if (++violations_ <= 10) {
      fmt::print("  atan2({:a}, {:a}): {:a} instead of {:a}\n", x_[i], y_[i], got, expected);
    }
  }

  std::string_view name_;
  std::int64_t tolerance_;
  std::vector<float> x_, y_, degrees_, expected_;
  std::int64_t compared_ = 0, differing_ = 0, largest_ = 0, violations_ = 0;
  double kernel_seconds_ = 0.0, reference_seconds_ = 0.0;
};

class Generator {
 public:
  float any() { return std::bit_cast<float>(static_cast<std::uint32_t>(engine_() >> 32U)); }
  float subnormal() {
    return std::bit_cast<float>(static_cast<std::uint32_t>(engine_() >> 32U) & 0x807FFFFFU);
  }
  // Either sign, 0.0001 to 10 with evenly spread logarithms: flow velocities in m/s.
  float velocity() {
    const double exponent = static_cast<double>(engine_() >> 11U) * 0x1p-53 * 5.0 - 4.0;
    return static_cast<float>(std::pow(10.0, exponent)) * sign();
  }
  float fraction() { return static_cast<float>(engine_() >> 40U) * 0x1p-25F; }
  float sign() { return (engine_() & 0x400U) != 0 ? -1.0F : 1.0F; }
  // Up to 8 units in the last place away from the value.
  float near(float value) {
    const auto step = static_cast<std::int32_t>((engine_() >> 20U) % 17U) - 8;
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(value) + step);
  }

 private:
  std::mt19937_64 engine_{20200701};
};

constexpr float smallest = std::numeric_limits<float>::denorm_min();
constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr float undefined = std::numeric_limits<float>::quiet_NaN();
constexpr float special_values[] = {0.0F,
                                    smallest,
                                    2.0F * smallest,
                                    0x1.fffffcp-127F,  // largest subnormal
                                    std::numeric_limits<float>::min(),
                                    1e-20F,
                                    1e-6F,
                                    0.5F,
                                    1.0F,
                                    0x1.000002p0F,  // next after 1
                                    3.0F,
                                    1e20F,
                                    0x1.fffffep126F,
                                    std::numeric_limits<float>::max(),
                                    infinite,
                                    undefined};

bool check_special_values(Generator& random) {
  Group all_pairs("special with special", 0);
  Group with_random("special with random", 1);
  for (const float v : special_values) {
    for (const float first : {v, -v}) {
      for (const float w : special_values) {
        all_pairs.add({first, w});
        all_pairs.add({first, -w});
      }
      for (int i = 0; i < 100000; ++i) {
        with_random.add({first, random.any()});
        with_random.add({random.any(), first});
      }
    }
  }
  return all_pairs.finish() & with_random.finish();
}

// Every 61st bit pattern, infinities and "not a number" among them.
bool check_exact_directions() {
  Group axes("axes (exact)", 0);
  Group diagonals("diagonals (exact)", 0);
  for (std::uint64_t bits = 0; bits <= 0xFFFFFFFFU; bits += 61) {
    const auto v = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    axes.add({v, 0.0F});
    axes.add({v, -0.0F});
    axes.add({0.0F, v});
    axes.add({-0.0F, v});
    diagonals.add({v, v});
    diagonals.add({v, -v});
  }
  return axes.finish() & diagonals.finish();
}

template <typename MakePair>
bool check_random(std::string_view name, std::int64_t count, MakePair make_pair) {
  Group group(name, 1);
  for (std::int64_t i = 0; i < count; ++i) group.add(make_pair());
  return group.finish();
}

}  // namespace

int main(int argument_count, char** arguments) {
  constexpr std::int64_t million = 1000000;
  const std::int64_t millions = argument_count > 1 ? std::atoll(arguments[1]) : 200;
  Generator random;
  bool good = check_special_values(random) & check_exact_directions();
  good &= check_random("random bit patterns", millions * million, [&] {
    return Pair{random.any(), random.any()};
  });
  good &= check_random("flow velocities", 30 * million, [&] {
    return Pair{random.velocity(), random.velocity()};
  });
  good &= check_random("beside the diagonals", 20 * million, [&] {
    const float v = random.any();
    return Pair{v, random.near(v) * random.sign()};
  });
  good &= check_random("beside 22.5 and 67.5 degrees", 20 * million, [&] {
    const float v = random.any();
    const float w = random.near(v * 0x1.a8279ap-2F) * random.sign();
    return random.sign() > 0.0F ? Pair{v, w} : Pair{w, v};
  });
  good &= check_random("subnormals", 10 * million, [&] {
    return Pair{random.subnormal(), random.subnormal()};
  });
  good &= check_random("subnormal results", 10 * million, [&] {
    return Pair{random.velocity() * 1e-5F, std::ldexp(1.0F + random.fraction(), 126)};
  });
  fmt::print("{}\n", good ? "Every result is within its tolerance." : "FAILED");
  return good ? 0 : 1;
}
