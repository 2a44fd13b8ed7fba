#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "output_file.h"

namespace quillet::example {

// Writes a binary .dat file, little-endian and without record marks. Header, 92 bytes, int4 each:
//   3000 | 100, 3 | 110, 4 (bytes of a real) | 120, 1 (bytes of a status) | 130 scalar, 140 vector
//   | 170, nodes | 180, cells | 190, name (40 characters, blank-padded)
// Per output time: int4 200, int1 1 (statuses follow), real4 hours, int1 per cell, then real4 per
// node, or x and y per node. At the end: int4 210.
class DatWriter {
 public:
  DatWriter(const std::string& path, const std::string& name, bool vector, std::int32_t nodes,
            std::int32_t cells);

  // One status per cell; one value per node, two for a vector.
  void write(float hours, const std::vector<std::int8_t>& statuses,
             const std::vector<float>& values);
  void close();

 private:
  OutputFile file_;
};

}  // namespace quillet::example
