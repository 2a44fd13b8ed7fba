// The parsed command line: filled once by the parser, changed by no later step.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillet {

struct OperationRow;

struct RunOptions {
  std::vector<std::string> inputs;         // in the order given
  std::optional<std::string> output_name;  // -out
  bool output_name_missing = false;        // -out was the last argument
  std::optional<std::string> mesh_file;    // -2dm

  std::vector<const OperationRow*> operations;  // each once; more than one is an error
  std::string operation_tag;                    // the option without its dash, for naming
  float cutoff = 0.1F;                          // -dur, -ddur, -trim, -toi

  // Hours.
  std::optional<float> time;         // the last of -k, -r and -t
  std::optional<float> range_start;  // -rangeA
  std::optional<float> range_end;    // -rangeB
  std::optional<float> tolerance;    // -dttol

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

  // Our own options.
  std::optional<bool> progress;  // --progress, --no-progress
  bool summary = false;          // --summary
  std::optional<int> threads;    // --threads; as many as the process may use, within reason

  double cell_size = 0;                           // m, --grid
  std::string cell_size_text;                     // as typed
  std::optional<std::int32_t> coordinate_system;  // EPSG code, --epsg
  std::optional<std::string> points_file;         // --points

  // More than one is an error, which is told later.
  void choose(const OperationRow& operation) {
    if (!asks_for(operation)) operations.push_back(&operation);
  }
  bool asks_for(const OperationRow& operation) const {
    return std::find(operations.begin(), operations.end(), &operation) != operations.end();
  }
  // The dataset is chosen by its path or its place in the list, not by its type.
  bool selects_by_itself() const { return dataset_path || scalar_id || vector_id; }
  bool selects_dataset() const { return type_given || selects_by_itself(); }
};

}  // namespace quillet
