// The lines of a .2dm file for the floor programs: one pass in large blocks, digits turned into
// numbers in place. Numbers have blanks, tabs or commas before them, and those with more digits
// than a 64-bit real holds are left to the library.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace quillet_floor {

// The values that the cards have, which the length of the first line tells.
enum class Form { full, pre_2005, fv };

inline const char* skip_blanks(const char* at) {
  while (*at == ' ' || *at == '\t' || *at == ',') ++at;
  return at;
}

inline const char* skip_item(const char* at) {
  at = skip_blanks(at);
  while (*at > ' ' && *at != ',') ++at;
  return at;
}

inline const char* take_digits(const char* at, std::int64_t& value) {
  for (unsigned digit = 0; (digit = static_cast<unsigned char>(*at) - unsigned{'0'}) < 10; ++at) {
    value = value * 10 + digit;
  }
  return at;
}

template <typename Integer>
inline const char* take_integer(const char* at, Integer& result) {
  at = skip_blanks(at);
  const bool is_negative = *at == '-';
  std::int64_t value = 0;
  at = take_digits(at + is_negative, value);
  result = static_cast<Integer>(is_negative ? -value : value);
  return at;
}

template <typename Real>
inline const char* take_real(const char* at, Real& result) {
  constexpr double powers_of_ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                      1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                      1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  at = skip_blanks(at);
  const char* const start = at;
  const bool is_negative = *at == '-';
  std::int64_t value = 0;
  at = take_digits(at + is_negative, value);
  std::int64_t exponent = 0;
  if (*at == '.') {
    const char* const point = at + 1;
    at = take_digits(point, value);
    exponent = point - at;
  }
  if (*at == 'E' || *at == 'e') {
    std::int64_t written = 0;
    at = take_integer(at + (at[1] == '+' ? 2 : 1), written);
    exponent += written;
  }
  if (value > (std::int64_t{1} << 53) || value < 0 || at - start > 22) {
    double real = 0;
    const char* const end = std::from_chars(start, start + 40, real).ptr;
    result = static_cast<Real>(real);
    return end;
  }
  double real = static_cast<double>(value);
  real = exponent < 0 ? real / powers_of_ten[-exponent] : real * powers_of_ten[exponent];
  result = static_cast<Real>(is_negative ? -real : real);
  return at;
}

constexpr int triangle_slots[] = {0, 2, 1};
constexpr int quad4_slots[] = {0, 3, 2, 1};
constexpr int quad9_slots[] = {0, 4, 1, 5, 2, 6, 3, 7, 8};

template <int kind>
inline const char* take_nodes(const char* at, std::int32_t* nodes) {
  constexpr const int* slots = kind == 3 ? triangle_slots : (kind == 4 ? quad4_slots : quad9_slots);
  for (int i = 0; i < kind; ++i) at = take_integer(at, nodes[slots[i]]);
  return at;
}

// What takes the lines has take_node(text) and take_element<kind>(text), both from after the name
// of the card on; they return where they stopped.
template <typename Tables>
inline const char* take_line(const char* line, Tables& tables) {
  if (line[0] == 'N' && line[1] == 'D') return tables.take_node(line + 2);
  if (line[0] != 'E') return line;
  if (line[1] == '4') return tables.template take_element<4>(line + 3);
  if (line[1] == '3') return tables.template take_element<3>(line + 3);
  if (line[1] == '9') return tables.template take_element<9>(line + 3);
  return line;
}

// Hands every line to `tables`; each ends with a line feed.
template <typename Tables>
void take_lines(const char* name, Tables& tables) {
  constexpr std::size_t block_size = std::size_t{256} << 10;
  const int file = ::open(name, O_RDONLY);
  if (file < 0) std::abort();
  char* const block = static_cast<char*>(std::malloc(block_size));
  std::size_t kept = 0;
  for (;;) {
    const ssize_t got = ::read(file, block + kept, block_size - kept);
    if (got <= 0) break;
    const char* const end = block + kept + got;
    const char* lines_end = end;
    while (lines_end > block && lines_end[-1] != '\n') --lines_end;
    const char* line = block;
    while (line < lines_end) {
      line = take_line(line, tables);
      if (*line != '\n') {
        const auto rest = static_cast<std::size_t>(end - line);
        line = static_cast<const char*>(std::memchr(line, '\n', rest));
      }
      ++line;
    }
    kept = static_cast<std::size_t>(end - line);
    std::memmove(block, line, kept);
  }
  ::close(file);
  std::free(block);
}

// Elevation of every node, in node order, and nothing else.
struct NodeElevations {
  const char* take_node(const char* at) {
    std::int32_t id = 0;
    at = take_integer(at, id);
    return take_real(skip_item(skip_item(at)), z[id - 1]);
  }
  template <int kind>
  const char* take_element(const char* at) {
    return at;
  }

  float* z;
};

}  // namespace quillet_floor
