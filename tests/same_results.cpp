#include "same_results.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <vector>

namespace quillet::testing {
namespace {

constexpr std::size_t head_size = 92;  // of a .dat file as the program writes it

std::int32_t integer_at(const std::string& bytes, std::size_t place) {
  std::int32_t value = 0;
  std::memcpy(&value, bytes.data() + place, sizeof value);
  return value;
}

float real_at(const std::string& bytes, std::size_t place) {
  float value = 0;
  std::memcpy(&value, bytes.data() + place, sizeof value);
  return value;
}

bool is_dat(const std::string& bytes) {
  return bytes.size() >= head_size && integer_at(bytes, 0) == 3000;
}

// What the byte at this place of a .dat file belongs to. Output times that hold one value per node
// in a vector file (maps of sources and times) are known by their markers.
class DatPlaces {
 public:
  explicit DatPlaces(const std::string& file)
      : bytes(file),
        is_vector(integer_at(file, 28) == 140),
        nodes(integer_at(file, 36)),
        cells(integer_at(file, 44)) {}

  std::string describe(std::size_t place) const {
    if (place < head_size) return "header byte " + std::to_string(place);
    std::size_t start = head_size;
    for (int output = 1; start + 9 <= bytes.size(); ++output) {
      const float time = real_at(bytes, start + 5);
      const std::size_t statuses = bytes[start + 4] == 1 ? static_cast<std::size_t>(cells) : 0;
      const std::size_t size =
          9 + statuses + 4 * static_cast<std::size_t>(nodes * components(time));
      if (place < start + size) return in_output(place - start, output, start, statuses, time);
      start += size;
    }
    return "the end card";
  }

 private:
  int components(float time) const { return is_vector && time != 222222 && time != 333333 ? 2 : 1; }

  std::string in_output(std::size_t offset, int output, std::size_t start, std::size_t statuses,
                        float time) const {
    std::ostringstream text;
    text << "output " << output << " (time " << time << "): ";
    if (offset < 9) {
      text << (offset < 4 ? "its card" : offset < 5 ? "its status flag" : "its time");
    } else if (offset < 9 + statuses) {
      text << "cell " << offset - 9 + 1 << ", status " << int{bytes[start + offset]};
    } else {
      const std::size_t value = (offset - 9 - statuses) / 4;
      const auto per_node = static_cast<std::size_t>(components(time));
      text << "node " << value / per_node + 1 << ", value "
           << real_at(bytes, start + 9 + statuses + 4 * value);
    }
    return text.str();
  }

  const std::string& bytes;
  bool is_vector;
  int nodes;
  int cells;
};

bool is_text(const std::string& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= 32 || c == '\n' || c == '\r' || c == '\t';
  });
}

std::string line_at(const std::string& text, std::size_t place) {
  const auto before = text.rfind('\n', place == 0 ? 0 : place - 1);
  const std::size_t start = before == std::string::npos ? 0 : before + 1;
  return text.substr(start, text.find('\n', start) - start);
}

std::string at(const std::string& bytes, std::size_t place) {
  if (place >= bytes.size()) return "ends after " + std::to_string(bytes.size()) + " bytes";
  if (is_dat(bytes)) return DatPlaces(bytes).describe(place);
  if (is_text(bytes)) return "line \"" + line_at(bytes, place) + "\"";
  return "byte " + std::to_string(static_cast<unsigned char>(bytes[place]));
}

}  // namespace

::testing::AssertionResult SAME_RESULTS(const std::string& found, const std::string& expected) {
  if (found == expected) return ::testing::AssertionSuccess();
  const auto [a, b] = std::mismatch(found.begin(), found.end(), expected.begin(), expected.end());
  const auto place = static_cast<std::size_t>(a - found.begin());
  return ::testing::AssertionFailure() << "first difference at byte " << place << ": found "
                                       << at(found, place) << "; expected " << at(expected, place);
}

}  // namespace quillet::testing
