// What the floor programs for .dat files need of a .2dm file: bed elevations, or the nodes of
// active cells. One pass in 1 MiB blocks, digits turned into numbers in place.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace quillet_floor {

inline const char* skip_item(const char* at) {
  while (*at == ' ') ++at;
  while (*at > ' ') ++at;
  return at;
}

inline const char* take_digits(const char* at, std::int64_t& value) {
  for (unsigned digit = 0; (digit = static_cast<unsigned char>(*at) - unsigned{'0'}) < 10; ++at) {
    value = value * 10 + digit;
  }
  return at;
}

inline const char* take_integer(const char* at, std::int32_t& result) {
  while (*at == ' ') ++at;
  std::int64_t value = 0;
  at = take_digits(at, value);
  result = static_cast<std::int32_t>(value);
  return at;
}

inline const char* take_real(const char* at, float& result) {
  constexpr double powers_of_ten[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  while (*at == ' ') ++at;
  const bool is_negative = *at == '-';
  std::int64_t value = 0;
  at = take_digits(at + is_negative, value);
  double real = static_cast<double>(value);
  if (*at == '.') {
    const char* const point = at + 1;
    at = take_digits(point, value);
    real = static_cast<double>(value) / powers_of_ten[at - point];
  }
  result = static_cast<float>(is_negative ? -real : real);
  return at;
}

// Calls take_line(line) for every line; each ends with a line feed.
template <typename TakeLine>
void for_each_line(const char* name, TakeLine take_line) {
  constexpr std::size_t block_size = std::size_t{1} << 20;
  const int file = ::open(name, O_RDONLY);
  if (file < 0) std::abort();
  char* const block = static_cast<char*>(std::malloc(block_size));
  std::size_t kept = 0;
  for (;;) {
    const ssize_t got = ::read(file, block + kept, block_size - kept);
    if (got <= 0) break;
    const char* const end = block + kept + got;
    const char* line = block;
    while (const void* line_end = std::memchr(line, '\n', static_cast<std::size_t>(end - line))) {
      take_line(line);
      line = static_cast<const char*>(line_end) + 1;
    }
    kept = static_cast<std::size_t>(end - line);
    std::memmove(block, line, kept);
  }
  ::close(file);
  std::free(block);
}

// Elevation of every node, in node order.
inline void read_elevations(const char* mesh, float* elevation) {
  for_each_line(mesh, [&](const char* line) {
    if (line[0] != 'N' || line[1] != 'D') return;
    std::int32_t id = 0;
    const char* at = take_integer(line + 2, id);
    at = skip_item(skip_item(at));
    take_real(at, elevation[id - 1]);
  });
}

// Sets counts[node] to 1 for the nodes of cells whose status is 1.
inline void mark_active_nodes(const char* mesh, const std::int8_t* status, std::uint8_t* counts) {
  for_each_line(mesh, [&](const char* line) {
    if (line[0] != 'E') return;
    std::int32_t id = 0;
    const char* at = take_integer(line + 3, id);
    if (status[id - 1] != 1) return;
    for (int i = line[1] - '0'; i > 0; --i) {
      std::int32_t node = 0;
      at = take_integer(at, node);
      counts[node - 1] = 1;
    }
  });
}

}  // namespace quillet_floor
