// A command line, up to the name of the output.
#include <sstream>
#include <vector>

#include "driver/argument_parser.h"
#include "driver/operation_choice.h"
#include "driver/option_checks.h"
#include "driver/output_naming.h"
#include "fuzz/fuzz_input.h"
#include "support/run_end.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream words{std::string(quillet::fuzz::TEXT_OF(data, size))};
  std::vector<std::string> arguments;
  for (std::string word; words >> word;) arguments.push_back(word);
  try {
    const quillet::RunOptions options = quillet::PARSE_ARGUMENTS(arguments);
    quillet::CHECK_OPTIONS(options);
    const quillet::OperationRow& operation = quillet::CHOOSE_OPERATION(options);
    if (!options.inputs.empty()) quillet::NAME_OUTPUT(operation, options);
  } catch (const quillet::RunEnd&) {
  }
  return 0;
}
