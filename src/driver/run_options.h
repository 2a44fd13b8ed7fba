// The parsed command line: filled once, read by every later step.
#pragma once

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "operations/operation.h"

namespace quillet {

struct RunOptions {
  std::vector<std::string> inputs;         // in the order given
  std::optional<std::string> output_name;  // -out
  std::optional<std::string> mesh_file;    // -2dm

  std::bitset<operation_names.size()> operations;  // by Operation; more than one is an error
  std::string operation_tag;                       // the option without its dash, for naming
  float cutoff = 0.1F;                             // -dur, -ddur, -trim, -toi

  float selected_time = 0;  // hours: the last of -k, -r and -t
  bool time_given = false;
  float range_start = 0;  // hours
  float range_end = 0;    // hours
  bool range_end_given = false;
  std::optional<float> tolerance;  // hours, -dttol

  // The result type asked for. The name starts as NUL characters, which no dataset's name holds,
  // and stays so for an unknown code.
  bool type_given = false;
  std::string type_code;
  std::string type_name = std::string(40, '\0');

  std::optional<std::string> dataset_path;  // -path
  std::optional<std::int32_t> scalar_id;    // -s
  std::optional<std::int32_t> vector_id;    // -v

  bool batch = false;          // -b: no waiting at the end
  bool no_wet_dry = false;     // -nowetdry
  bool ignore_stored = false;  // -ignore_mm

  bool has(Operation operation) const { return operations[static_cast<std::size_t>(operation)]; }
  void add(Operation operation) { operations.set(static_cast<std::size_t>(operation)); }
};

}  // namespace quillet
