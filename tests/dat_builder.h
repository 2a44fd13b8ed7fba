// The bytes of .dat files, card by card, without the program's own writer.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::testing {

class DatBuilder {
 public:
  DatBuilder& integer(std::int32_t value) { return raw(value); }
  DatBuilder& real(float value) { return raw(value); }
  DatBuilder& byte(int value) { return raw(static_cast<std::int8_t>(value)); }
  DatBuilder& card(std::int32_t code, std::int32_t item) { return integer(code).integer(item); }
  DatBuilder& name(std::string text) {
    text.resize(40, ' ');
    integer(190);
    bytes += text;
    return *this;
  }
  std::string build() const { return bytes; }

 private:
  template <typename Value>
  DatBuilder& raw(Value value) {
    char buffer[sizeof value];
    std::memcpy(buffer, &value, sizeof value);
    bytes.append(buffer, sizeof value);
    return *this;
  }

  std::string bytes;
};

// One output time. Without statuses its flag says that none follow.
struct DatTime {
  float time = 0;
  std::vector<int> statuses;
  std::vector<float> values;  // x y x y ... for vectors
};

struct DatShape {
  std::int32_t nodes = 0;
  std::int32_t cells = 0;
  bool is_vector = false;
};

inline DatBuilder DAT_HEADER(const DatShape& shape, const std::string& name) {
  DatBuilder file;
  file.integer(3000).card(100, 3).card(110, 4).card(120, 1).integer(shape.is_vector ? 140 : 130);
  file.card(170, shape.nodes).card(180, shape.cells).name(name);
  return file;
}

inline void ADD_TIME(DatBuilder& file, const DatTime& step) {
  file.integer(200).byte(step.statuses.empty() ? 0 : 1).real(step.time);
  for (const int status : step.statuses) file.byte(status);
  for (const float value : step.values) file.real(value);
}

inline std::string DAT_FILE(const DatShape& shape, const std::string& name,
                            const std::vector<DatTime>& times) {
  DatBuilder file = DAT_HEADER(shape, name);
  for (const DatTime& step : times) ADD_TIME(file, step);
  return file.integer(210).build();
}

}  // namespace quillet::testing
