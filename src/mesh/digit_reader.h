// Runs of digits in text, read eight characters at once. Digits make up most of a mesh.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillet {

// A run of 1 to 7 digits.
struct DigitRun {
  std::uint32_t count = 1;
  std::uint32_t shift = 48;  // moves the character after it to the end of eight

  void set(std::size_t digits) {
    count = static_cast<std::uint32_t>(digits);
    shift = 56 - 8 * count;
  }
};

// The runs of digits of a line, in their order.
struct DigitRuns {
  static constexpr std::size_t most = 32;
  std::array<DigitRun, most> runs{};

  DigitRun& operator[](std::size_t index) { return runs[index % most]; }
};

// The first eight characters of a text.
class EightCharacters {
 public:
  static constexpr std::ptrdiff_t size = 8;

  [[gnu::always_inline]] explicit EightCharacters(const char* text) {
    std::memcpy(&digits, text, size);
    if constexpr (std::endian::native == std::endian::big) digits = __builtin_bswap64(digits);
    digits ^= 0x3030303030303030;
    others = (digits | (digits + 0x7676767676767676)) & 0x8080808080808080;
  }

  // Digits before the first other character. Of those after it `others` may be wrong.
  std::size_t digit_count() const { return static_cast<std::size_t>(std::countr_zero(others)) / 8; }

  // Whether the run and then another character stand there.
  [[gnu::always_inline]] bool begin_with(const DigitRun& run) const {
    return others << run.shift == std::uint64_t{1} << 63;
  }

  // The number that the digits of a run make.
  [[gnu::always_inline]] std::uint64_t number(const DigitRun& run) const {
    return number_of(digits << 8 << run.shift);
  }
  std::uint64_t number() const { return number_of(digits); }  // of eight digits

 private:
  // Pairs of digits, then fours, then all.
  [[gnu::always_inline]] static std::uint64_t number_of(std::uint64_t last) {
    constexpr std::uint64_t every_fourth = 0x000000FF000000FF;
    const std::uint64_t pairs = last * 10 + (last >> 8);
    return ((pairs & every_fourth) * (100 + (std::uint64_t{1000000} << 32)) +
            (pairs >> 16 & every_fourth) * (1 + (std::uint64_t{10000} << 32))) >>
           32;
  }

  std::uint64_t digits;
  std::uint64_t others;  // 0x80 for each character that is no digit
};

// Lines of a mesh mostly have numbers as long as those of the line before. Where that is so the
// processor need not wait for the length of one number before it turns to the next.
class DigitReader {
 public:
  // Nothing from `text_end` on is looked at. `expected` decides how fast digits are read and
  // nothing else; it becomes what this line is like.
  DigitReader(const char* text_end, DigitRuns& expected) : limit(text_end), line(expected) {}

  // Appends the digits at `place` to a number and goes past them, where they are 1 to 7. `index`
  // tells the runs of a line apart.
  [[gnu::always_inline]] bool take_few(std::size_t index, const char*& place,
                                       std::uint64_t& number) const {
    if (limit - place < EightCharacters::size) return false;
    const EightCharacters text(place);
    DigitRun run = line[index];
    if (!text.begin_with(run)) [[unlikely]] {
      if (!learn(text, index)) return false;
      run = line[index];
    }
    number = number * powers_of_ten[run.count] + text.number(run);
    place += run.count;
    return true;
  }

  [[gnu::always_inline]] bool skip_few(std::size_t index, const char*& place) const {
    if (limit - place < EightCharacters::size) return false;
    const EightCharacters text(place);
    if (!text.begin_with(line[index]) && !learn(text, index)) return false;
    place += line[index].count;
    return true;
  }

  // The same with any number of digits, none too: returns how many. Too many wrap around. A
  // character that is no digit must follow.
  [[gnu::always_inline]] std::size_t take(std::size_t index, const char*& place,
                                          std::uint64_t& number) const {
    const char* const start = place;
    if (take_few(index, place, number)) [[likely]]
      return line[index].count;
    const Taken taken = take_many(place, limit, number);
    place = taken.end;
    number = taken.number;
    return static_cast<std::size_t>(place - start);
  }

  [[gnu::always_inline]] std::size_t skip(std::size_t index, const char*& place) const {
    const char* const start = place;
    if (skip_few(index, place)) [[likely]]
      return line[index].count;
    place = take_many(place, limit, 0).end;
    return static_cast<std::size_t>(place - start);
  }

 private:
  struct Taken {
    const char* end;
    std::uint64_t number;
  };

  static constexpr std::array<std::uint64_t, 9> powers_of_ten{
      1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

  [[gnu::always_inline]] bool learn(const EightCharacters& text, std::size_t index) const {
    const std::size_t count = text.digit_count();
    if (count == 0 || count == EightCharacters::size) return false;
    line[index].set(count);
    return true;
  }

  // Given what it needs in registers, so that nothing need stand in memory for it.
  [[gnu::noinline]] static Taken take_many(const char* place, const char* limit,
                                           std::uint64_t number) {
    while (limit - place >= EightCharacters::size) {
      const EightCharacters text(place);
      const std::size_t count = text.digit_count();
      if (count == 0) return {place, number};
      if (count == EightCharacters::size) {
        number = number * powers_of_ten[8] + text.number();
        place += count;
        continue;
      }
      DigitRun run;
      run.set(count);
      return {place + count, number * powers_of_ten[count] + text.number(run)};
    }
    for (unsigned digit = 0; (digit = static_cast<unsigned char>(*place) - unsigned{'0'}) < 10;
         ++place) {
      number = number * 10 + digit;
    }
    return {place, number};
  }

  const char* limit;
  DigitRuns& line;
};

}  // namespace quillet
