// What the output of a run is called: its file, and the group and dataset in it.
#pragma once

#include <string>

#include "driver/run_options.h"

namespace quillet {

struct OutputNaming {
  std::string base_file_name;  // the extension comes later
  std::string item_name;       // the first input without folder and extension
  std::string group_name;
  std::string dataset_name;
  bool user_named = false;      // -out
  bool special_output = false;  // a text file
};

// Names the output after the operation, the inputs and the options. At least one input. A third
// input of a difference names the output and is taken off the list of inputs.
OutputNaming NAME_OUTPUT(Operation operation, RunOptions& options);

}  // namespace quillet
