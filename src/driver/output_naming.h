// What the output of a run is called: its file, and the group and dataset in it.
#pragma once

#include <string>
#include <string_view>

#include "driver/run_options.h"

namespace quillet {

struct OperationRow;

struct OutputNaming {
  std::string base_file_name;  // the extension comes later
  std::string item_name;       // the first input without folder and extension
  std::string group_name;
  std::string dataset_name;
  bool user_named = false;  // -out

  // Appends to the name that comes from the input; one that the user chose stands as it is.
  void append(const std::string& suffix);
};

// Names the output after the operation, the inputs and the options. At least one input.
OutputNaming NAME_OUTPUT(const OperationRow& operation, const RunOptions& options);

// A difference is named after both inputs, without their folders, or by a third name.
void NAME_AFTER_TWO_INPUTS(std::string_view dataset_prefix, const RunOptions& options,
                           OutputNaming& naming);

}  // namespace quillet
