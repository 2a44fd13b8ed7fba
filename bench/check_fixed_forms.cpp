// Compares the E12.5 form with the C library's exact "%.4e", moved to the form with a leading "0.",
// over sets of 32-bit and 64-bit values.
//
//     check_fixed_forms [--stride N] [--doubles N] [--threads N]
//
// --stride   every N-th of the 2^32 bit patterns of a 32-bit real is compared (41: 105 million)
// --doubles  number of random 64-bit patterns, and of random 64-bit ties (3000000)
// --threads  threads (1)
//
// Prints what was compared and how often the two differ; exit status 1 when they ever do.

#include <algorithm>
#include <atomic>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string_view>
#include <thread>
#include <vector>

#include "ensight/fixed_forms.h"

namespace {

struct Options {
  std::uint64_t stride = 41;
  std::uint64_t doubles = 3000000;
  std::uint64_t threads = 1;
};

// "-1.2345e+03" becomes "-0.12345E+04".
void write_expected(double value, char* out) {
  char text[32];
  if (!std::isfinite(value)) {
    std::snprintf(text, sizeof text, "%12s",
                  std::isnan(value) ? "NaN" : (value < 0 ? "-Infinity" : "Infinity"));
    std::memcpy(out, text, quillet::e12_5_width);
    return;
  }
  std::snprintf(text, sizeof text, "% .4e", value);
  int exponent = 0;
  std::from_chars(text + 9, text + 12, exponent);
  if (text[8] == '-') exponent = -exponent;
  if (value != 0) ++exponent;
  const char sign = exponent < 0 ? '-' : '+';
  const int size = std::abs(exponent);
  std::memcpy(out, text, 1);
  std::memcpy(out + 1, "0.", 2);
  std::memcpy(out + 3, text + 1, 1);
  std::memcpy(out + 4, text + 3, 4);
  char tail[16];
  std::snprintf(tail, sizeof tail, size < 100 ? "E%c%02d" : "%c%03d", sign, size);
  std::memcpy(out + 8, tail, 4);
}

class Comparison {
 public:
  void compare_floats(const std::vector<float>& values) {
    std::vector<char> lines(values.size() * quillet::e12_5_line_width);
    const char* end = quillet::WRITE_E12_5_LINES(
        values.data(), static_cast<std::int64_t>(values.size()), lines.data());
    if (end != lines.data() + lines.size()) ++differences_;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const char* line = &lines[i * quillet::e12_5_line_width];
      compare(values[i], line);
      if (line[quillet::e12_5_width] != '\n') ++differences_;
    }
    compared_ += values.size();
  }

  void compare_doubles(const std::vector<double>& values) {
    for (const double value : values) {
      char text[quillet::e12_5_width];
      if (quillet::WRITE_E12_5(value, text) != text + sizeof text) ++differences_;
      compare(value, text);
    }
    compared_ += values.size();
  }

  // Returns whether no value of the set differed, and starts the next set.
  bool report(const char* name) {
    std::printf("%-36s %12llu compared, %llu different\n", name,
                static_cast<unsigned long long>(compared_),
                static_cast<unsigned long long>(differences_));
    std::fflush(stdout);
    const bool is_clean = differences_ == 0 && compared_ > 0;
    compared_ = differences_ = 0;
    return is_clean;
  }

 private:
  void compare(double value, const char* text) {
    char expected[quillet::e12_5_width];
    write_expected(value, expected);
    if (std::memcmp(text, expected, sizeof expected) == 0) return;
    if (++differences_ > 10) return;
    std::printf("%a: \"%.12s\" instead of \"%.12s\"\n", value, text, expected);
  }

  std::atomic<std::uint64_t> compared_ = 0;
  std::atomic<std::uint64_t> differences_ = 0;
};

// Calls work(first, last) for consecutive pieces of 0..count-1.
void in_pieces(std::int64_t count, std::uint64_t threads,
               const std::function<void(std::int64_t, std::int64_t)>& work) {
  constexpr std::int64_t piece = 1 << 14;
  std::atomic<std::int64_t> next = 0;
  const auto take_pieces = [&] {
    for (std::int64_t first = next.fetch_add(piece); first < count; first = next.fetch_add(piece)) {
      work(first, std::min(first + piece, count) - 1);
    }
  };
  std::vector<std::thread> others;
  for (std::uint64_t i = 1; i < threads; ++i) others.emplace_back(take_pieces);
  take_pieces();
  for (std::thread& other : others) other.join();
}

std::vector<float> patterns(std::int64_t from, std::int64_t to, std::uint64_t stride) {
  std::vector<float> values;
  for (std::int64_t i = from; i <= to; ++i) {
    values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(i * stride)));
  }
  return values;
}

// The values centre(from..to) and their neighbours, with both signs.
std::vector<float> around(double (*centre)(double), std::int64_t from, std::int64_t to, int ulps) {
  std::vector<float> values;
  for (std::int64_t i = from; i <= to; ++i) {
    const auto value = static_cast<float>(centre(static_cast<double>(i)));
    const auto bits = std::bit_cast<std::int32_t>(value);
    for (int offset = -ulps; offset <= ulps; ++offset) {
      if (bits + offset < 0) continue;
      const auto neighbour = std::bit_cast<float>(bits + offset);
      values.push_back(neighbour);
      values.push_back(-neighbour);
    }
  }
  return values;
}

std::vector<double> random_patterns(std::uint64_t count, std::mt19937_64& random) {
  std::vector<double> values(count);
  for (double& value : values) value = std::bit_cast<double>(random());
  return values;
}

// (n + 1/2) * 10^p with five-digit n: exact ties for p >= 0 up to 22; with -4 <= p < 0 where the
// decimal fraction is one in binary too, otherwise the two doubles nearest to a tie.
std::vector<double> random_ties(std::uint64_t count, std::mt19937_64& random) {
  std::vector<double> values(count);
  for (double& value : values) {
    const double tie = 10000.5 + static_cast<double>(random() % 90000);
    const int power = static_cast<int>(random() % 45) - 22;
    value = power < 0 ? tie / std::pow(10.0, -power) : tie * std::pow(10.0, power);
    const std::uint64_t neighbour = random() % 4;
    if (neighbour == 0) value = std::nextafter(value, 0.0);
    if (neighbour == 1) value = std::nextafter(value, 1e300);
  }
  return values;
}

bool read_number(std::string_view text, std::uint64_t& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() && number > 0;
}

bool read_options(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; i += 2) {
    const std::string_view name = argv[i];
    std::uint64_t* number = name == "--stride"    ? &options.stride
                            : name == "--doubles" ? &options.doubles
                            : name == "--threads" ? &options.threads
                                                  : nullptr;
    if (number == nullptr || i + 1 >= argc || !read_number(argv[i + 1], *number)) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!read_options(argc, argv, options)) {
    std::puts("check_fixed_forms [--stride N] [--doubles N] [--threads N]");
    return 2;
  }
  Comparison comparison;
  bool is_clean = true;
  const auto check = [&](const char* name, double (*centre)(double), std::int64_t from,
                         std::int64_t to, int ulps) {
    in_pieces(to - from + 1, options.threads, [&](std::int64_t first, std::int64_t last) {
      comparison.compare_floats(around(centre, from + first, from + last, ulps));
    });
    is_clean &= comparison.report(name);
  };
  check(
      "zero and denormals", [](double i) { return i * 0x1p-149; }, 0, 1 << 20, 0);
  check(
      "powers of ten", [](double i) { return std::pow(10.0, i); }, -45, 38, 3);
  check(
      "powers of two", [](double i) { return std::exp2(i); }, -149, 127, 3);
  check(
      "integers", [](double i) { return i; }, 0, 1 << 24, 0);
  check(
      "integers and a half", [](double i) { return i + 0.5; }, 0, 1 << 22, 0);
  check(
      "eighths", [](double i) { return i * 0.125; }, 0, 1 << 22, 0);
  check(
      "tenths", [](double i) { return i * 0.1; }, 0, 1 << 22, 1);
  check(
      "tens and five", [](double i) { return i * 10 + 5; }, 10000, 1 << 20, 1);

  std::mt19937_64 random(20240607);
  comparison.compare_doubles(random_patterns(options.doubles, random));
  is_clean &= comparison.report("64-bit, random patterns");
  comparison.compare_doubles(random_ties(options.doubles, random));
  is_clean &= comparison.report("64-bit, ties and their neighbours");
  std::vector<double> denormals(options.doubles / 10);
  for (double& value : denormals) value = std::bit_cast<double>(random() >> (12 + random() % 52));
  comparison.compare_doubles(denormals);
  is_clean &= comparison.report("64-bit, denormals");

  constexpr std::uint64_t last_pattern = 0xFFFFFFFF;
  const auto multiples = static_cast<std::int64_t>(last_pattern / options.stride + 1);
  in_pieces(multiples, options.threads, [&](std::int64_t first, std::int64_t last) {
    comparison.compare_floats(patterns(first, last, options.stride));
  });
  is_clean &= comparison.report("32-bit, patterns with the stride");
  std::puts(is_clean ? "No difference." : "DIFFERENT.");
  return is_clean ? 0 : 1;
}
