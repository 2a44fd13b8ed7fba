// The floor under the mesh readers: one thread, one pass, no checks, and nothing but the work.
// Reads the file in 1 MiB blocks and parses an ordinary .2dm in the full form into plain tables.
//
//     floor_mesh full FILE         nodes, elements, extents and node kinds
//     floor_mesh elevations FILE   elevations and corners alone
//
// Prints seconds, MB/s and sums over the tables, which keep the work from being left out.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

struct Node {
  double x, y;
  float z, more[3];
  char kind[2];
  std::int8_t flag;
};

struct Element {
  std::int32_t kind, nodes[9], material, more[2];
  std::int8_t byte, mark;
  char code[2];
};

// Tables as large as any file of this size can need: pages that are not used cost nothing.
template <typename Item>
Item* table(std::int64_t count) {
  return static_cast<Item*>(std::calloc(static_cast<std::size_t>(count), sizeof(Item)));
}

constexpr double powers_of_ten[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

inline const char* skip_blanks(const char* at) {
  while (*at == ' ') ++at;
  return at;
}

inline const char* parse_digits(const char* at, std::int64_t& value) {
  for (unsigned digit = 0; (digit = static_cast<unsigned char>(*at) - unsigned{'0'}) < 10; ++at) {
    value = value * 10 + digit;
  }
  return at;
}

template <typename Integer>
inline const char* parse_integer(const char* at, Integer& result) {
  at = skip_blanks(at);
  const bool is_negative = *at == '-';
  std::int64_t value = 0;
  at = parse_digits(at + is_negative, value);
  result = static_cast<Integer>(is_negative ? -value : value);
  return at;
}

template <typename Real>
inline const char* parse_real(const char* at, Real& result) {
  at = skip_blanks(at);
  const bool is_negative = *at == '-';
  std::int64_t value = 0;
  at = parse_digits(at + is_negative, value);
  double real = static_cast<double>(value);
  if (*at == '.') {
    const char* const point = at + 1;
    at = parse_digits(point, value);
    real = static_cast<double>(value) / powers_of_ten[at - point];
  }
  result = static_cast<Real>(is_negative ? -real : real);
  return at;
}

constexpr int triangle_slots[] = {0, 2, 1};
constexpr int quad4_slots[] = {0, 3, 2, 1};
constexpr int quad9_slots[] = {0, 4, 1, 5, 2, 6, 3, 7, 8};

template <int kind>
inline const char* parse_corners(const char* at, std::int32_t* nodes) {
  constexpr const int* slots = kind == 3 ? triangle_slots : (kind == 4 ? quad4_slots : quad9_slots);
  for (int i = 0; i < kind; ++i) at = parse_integer(at, nodes[slots[i]]);
  return at;
}

struct FullMesh {
  explicit FullMesh(std::int64_t lines)
      : nodes(table<Node>(lines)), elements(table<Element>(lines)) {}

  void take_node(const char* at) {
    std::int32_t id = 0;
    at = parse_integer(at, id);
    Node& node = nodes[id - 1];
    at = parse_real(at, node.x);
    at = parse_real(at, node.y);
    at = parse_real(at, node.z);
    at = parse_integer(at, node.flag);
    for (float& value : node.more) at = parse_real(at, value);
    x_min = std::min(x_min, node.x);
    x_max = std::max(x_max, node.x);
    y_min = std::min(y_min, node.y);
    y_max = std::max(y_max, node.y);
    ++node_count;
  }

  template <int kind>
  void take_element(const char* at) {
    std::int32_t id = 0;
    at = parse_integer(at, id);
    Element& element = elements[id - 1];
    element.kind = kind;
    at = parse_corners<kind>(at, element.nodes);
    at = parse_integer(at, element.material);
    for (std::int32_t& value : element.more) at = parse_integer(at, value);
    at = parse_integer(at, element.byte);
    if (kind == 3) std::memcpy(element.code, skip_blanks(at), 2);
    ++element_count;
  }

  void finish() {
    for (std::int64_t i = 0; i < element_count; ++i) {
      const Element& element = elements[i];
      const int corners = element.kind == 3 ? 3 : 4;
      for (int slot = 0; slot < corners; ++slot) {
        std::memcpy(nodes[element.nodes[slot] - 1].kind, corners == 3 ? "T " : "H ", 2);
      }
      if (element.kind != 9) continue;
      for (int slot = 4; slot < 8; ++slot)
        std::memcpy(nodes[element.nodes[slot] - 1].kind, "UV", 2);
      std::memcpy(nodes[element.nodes[8] - 1].kind, "C ", 2);
    }
  }

  double sum() const {
    double total = x_min + x_max + y_min + y_max;
    for (std::int64_t i = 0; i < node_count; ++i) total += nodes[i].z + nodes[i].kind[0];
    for (std::int64_t i = 0; i < element_count; ++i) total += elements[i].nodes[2];
    return total;
  }

  Node* nodes;
  Element* elements;
  std::int64_t node_count = 0, element_count = 0;
  double x_min = 1e300, x_max = -1e300, y_min = 1e300, y_max = -1e300;
};

struct Elevations {
  explicit Elevations(std::int64_t lines) : z(table<float>(lines)) {
    for (auto& corner : corners) corner = table<std::int32_t>(lines);
  }

  void take_node(const char* at) {
    std::int32_t id = 0;
    at = parse_integer(at, id);
    for (int i = 0; i < 2; ++i) {
      at = skip_blanks(at);
      while (*at > ' ') ++at;
    }
    parse_real(at, z[id - 1]);
    ++node_count;
  }

  template <int kind>
  void take_element(const char* at) {
    if (kind == 9) return;
    std::int32_t id = 0;
    at = parse_integer(at, id);
    std::int32_t nodes[9] = {};
    parse_corners<kind>(at, nodes);
    for (int slot = 0; slot < 4; ++slot) corners[slot][id - 1] = nodes[slot];
    ++element_count;
  }

  void finish() {}

  double sum() const {
    double total = 0;
    for (std::int64_t i = 0; i < node_count; ++i) total += z[i];
    for (std::int64_t i = 0; i < element_count; ++i) total += corners[2][i];
    return total;
  }

  float* z;
  std::int32_t* corners[4];
  std::int64_t node_count = 0, element_count = 0;
};

template <typename Tables>
inline void take_line(const char* line, Tables& tables) {
  if (line[0] == 'N' && line[1] == 'D') {
    tables.take_node(line + 2);
  } else if (line[0] == 'E' && line[1] == '4') {
    tables.template take_element<4>(line + 3);
  } else if (line[0] == 'E' && line[1] == '3') {
    tables.template take_element<3>(line + 3);
  } else if (line[0] == 'E' && line[1] == '9') {
    tables.template take_element<9>(line + 3);
  }
}

template <typename Tables>
void read_file(int file, Tables& tables) {
  constexpr std::size_t block_size = std::size_t{1} << 20;
  char* const block = static_cast<char*>(std::malloc(block_size));
  std::size_t kept = 0;
  for (;;) {
    const ssize_t got = ::read(file, block + kept, block_size - kept);
    if (got <= 0) break;
    const char* const end = block + kept + got;
    const char* line = block;
    while (const void* line_end = std::memchr(line, '\n', static_cast<std::size_t>(end - line))) {
      take_line(line, tables);
      line = static_cast<const char*>(line_end) + 1;
    }
    kept = static_cast<std::size_t>(end - line);
    std::memmove(block, line, kept);
  }
  tables.finish();
}

template <typename Tables>
int run(const char* name) {
  const int file = ::open(name, O_RDONLY);
  if (file < 0) return EXIT_FAILURE;
  const std::int64_t size = ::lseek(file, 0, SEEK_END);
  ::lseek(file, 0, SEEK_SET);

  const auto start = std::chrono::steady_clock::now();
  Tables tables(size / 12);
  read_file(file, tables);
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  std::printf("%.4f s, %.0f MB/s, %lld nodes, %lld elements, sum %.17g\n", time.count(),
              static_cast<double>(size) / 1e6 / time.count(),
              static_cast<long long>(tables.node_count),
              static_cast<long long>(tables.element_count), tables.sum());
  return EXIT_SUCCESS;
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view mode = count == 3 ? arguments[1] : "";
  if (mode == "full") return run<FullMesh>(arguments[2]);
  if (mode == "elevations") return run<Elevations>(arguments[2]);
  std::fputs("floor_mesh full|elevations FILE\n", stderr);
  return EXIT_FAILURE;
}
