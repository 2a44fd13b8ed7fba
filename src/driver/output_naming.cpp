#include "driver/output_naming.h"

#include "driver/operation_table.h"
#include "support/console.h"
#include "support/file_names.h"

namespace quillet {

void OutputNaming::append(const std::string& suffix) {
  if (!user_named) base_file_name += "(" + suffix + ")";
}

void NAME_AFTER_TWO_INPUTS(std::string_view dataset_prefix, const RunOptions& options,
                           OutputNaming& naming) {
  const auto& inputs = options.inputs;
  const std::string names = FILENAME(inputs[0]) + " - " + FILENAME(inputs[1]);
  if (inputs.size() > 2) {
    if (naming.user_named) {
      SAY_APART(
          "WARNING - More than two files specifed for -dif or -ddur option with -out option.");
      PAUSE();
    }
    naming.base_file_name = FILENAMEPATH(inputs[2]);
  } else if (!naming.user_named) {
    naming.base_file_name = names;
  }
  naming.dataset_name = std::string(dataset_prefix) + names;
}

OutputNaming NAME_OUTPUT(const OperationRow& operation, const RunOptions& options) {
  OutputNaming naming;
  naming.user_named = options.output_name.has_value();
  naming.base_file_name = options.output_name.value_or(FILENAMEPATH(options.inputs[0]));
  naming.item_name = FILENAME(options.inputs[0]);
  naming.group_name = operation.group;
  if (operation.name_output != nullptr) operation.name_output(options, naming);
  return naming;
}

}  // namespace quillet
